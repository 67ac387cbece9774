// Programs made of the catalogue's stages in other ways.
#include "NRenderUtl/shaders/meshprograms.h"

#include "NRenderUtl/shaders/shadercatalogue.h"

NShaderProgram& elementMeshProgram() {
    static ComposedProgram program;
    static bool tried = false;
    if (!tried && IsFastRendererEnabled()) {
        tried = true;
        program.build(RenderShaderMesh, "ELEMENT_ATTRIBUTE");
    }
    return program;
}
