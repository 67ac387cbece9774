// Element of a primitive, and what the geometry stages hand on of it.

uniform int g_bd;
uniform int g_nfconn;
uniform int g_bct;
uniform isamplerBuffer g_fpbuff;
uniform isamplerBuffer g_dbuff;
uniform int g_bw;
uniform int g_bsw;
uniform int g_smooth;

out GSVertexData {
    vec3 position;
    flat vec4 color;
    vec2 texcoord;
    vec3 normal;
    flat int contour;
} GeometryOut;

bool isElementClipped(int element);
bool isElementFailing(int element);
bool isElementVisible(int element, int derived, inout vec4 color, out bool ownColor, out bool selected);

// What all corners of the element share.
struct ElementLook {
    int element;
    vec4 color;
    vec3 normal;
    bool contour;
} current;

int elementOf(int primitive) {
    if (g_nfconn == 1)
        return texelFetch(g_fpbuff, primitive).r;
    return g_bd == 1 ? texelFetch(g_dbuff, primitive).r : primitive;
}

// Whether the primitive's element is shown; emitCorner then emits its corners. p0 to p2 span its plane.
bool beginElement(int primitive, vec4 vertexColor, vec3 p0, vec3 p1, vec3 p2) {
    int element = elementOf(primitive);
    if (isElementClipped(element) || (g_nfconn == 0 && isElementFailing(element)))
        return false;
    vec4 color = vertexColor;
    bool ownColor, selected;
    if (!isElementVisible(element, g_bd, color, ownColor, selected))
        return false;
    current.element = element;
    current.color = g_bw == 1 && g_bsw == 1 ? vertexColor : color;
    current.normal = normalize(cross(p1 - p0, p2 - p0));
    current.contour = g_bct == 1 && !selected;
    return true;
}

// Emits a vertex at gl_Position.
void emitCorner(vec3 position, vec2 texcoord, vec3 normal, int sharp) {
    GeometryOut.position = position;
    GeometryOut.color = current.color;
    GeometryOut.texcoord = texcoord;
    GeometryOut.normal = g_smooth == 1 && sharp == 0 ? normal : current.normal;
    GeometryOut.contour = int(current.contour);
    gl_PrimitiveID = current.element;
    EmitVertex();
}
