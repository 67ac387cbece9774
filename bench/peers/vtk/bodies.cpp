// A torus in one colour under two lights, classic or physically based.
#include "bench/peers/vtk/vtk.h"

#include <vtkCamera.h>
#include <vtkFeatureEdges.h>
#include <vtkImageData.h>
#include <vtkOpenGLRenderer.h>
#include <vtkPBRIrradianceTexture.h>
#include <vtkPBRLUTTexture.h>
#include <vtkPBRPrefilterTexture.h>
#include <vtkPointData.h>
#include <vtkProperty.h>
#include <vtkSkybox.h>
#include <vtkTexture.h>

namespace nrubench {

namespace {

constexpr double kCovered = 0.4;

vtkSmartPointer<vtkActor> makeTorus(unsigned size) {
    openTorusView();
    const Torus torus(size);
    const vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(makePolyData(makeTriples(torus.positions), torus.normals, torus.triangles));
    auto actor = vtkSmartPointer<vtkActor>::New();
    actor->SetMapper(mapper);
    vtkProperty* property = actor->GetProperty();
    property->SetColor(0.8, 0.5, 0.2);
    property->SetAmbient(0.2);
    property->SetDiffuse(0.8);
    property->SetSpecular(0.48);
    property->SetSpecularPower(30);
    renderer()->AddActor(actor);
    return actor;
}

Work frames() {
    return {[](unsigned) { window()->Render(); }, true, kCovered};
}

Work classic(unsigned size) {
    makeTorus(size);
    return frames();
}

Work transparent(unsigned size) {
    makeTorus(size)->GetProperty()->SetOpacity(0.5);
    return frames();
}

Work physical(unsigned size) {
    vtkProperty* property = makeTorus(size)->GetProperty();
    property->SetInterpolationToPBR();
    property->SetMetallic(0.9);
    property->SetRoughness(0.35);
    return frames();
}

// --- surroundings ------------------------------------------------------------------------------------------

/// Every step-th pixel of the sky.
vtkSmartPointer<vtkTexture> makeSky(int step) {
    const vtkNew<vtkImageData> image;
    image->SetDimensions(kSkyWidth / step, kSkyHeight / step, 1);
    image->AllocateScalars(VTK_FLOAT, 3);
    for (int y = 0; y < kSkyHeight / step; ++y)
        for (int x = 0; x < kSkyWidth / step; ++x) {
            const auto radiance = skyRadiance(step * x, kSkyHeight - 1 - step * y);
            std::copy(radiance.begin(), radiance.end(),
                      static_cast<float*>(image->GetScalarPointer(x, y, 0)));
        }
    auto sky = vtkSmartPointer<vtkTexture>::New();
    sky->SetInputData(image);
    sky->SetColorModeToDirectScalars();
    sky->MipmapOn();
    sky->InterpolateOn();
    return sky;
}

/// Maps of the library's sizes and numbers of samples: 65536 for irradiance, 1024 for mirrored light, in
/// which the first level is as high as the picture.
void setSky() {
    renderer()->UseImageBasedLightingOn();
    renderer()->SetEnvironmentTexture(makeSky(2));
    auto* maps = vtkOpenGLRenderer::SafeDownCast(renderer());
    check(maps, "no renderer of OpenGL");
    maps->GetEnvMapIrradiance()->SetIrradianceSize(32);
    maps->GetEnvMapIrradiance()->SetIrradianceStep(static_cast<float>(std::numbers::pi / 256));
    maps->GetEnvMapPrefiltered()->SetPrefilterLevels(5);
    maps->GetEnvMapPrefiltered()->SetPrefilterMaxSamples(1024);
    maps->GetEnvMapLookupTable()->SetLUTSize(512);
    maps->GetEnvMapLookupTable()->SetLUTSamples(1024);
}

Work environment(unsigned size) {
    physical(size);
    setSky();
    renderer()->AutomaticLightCreationOff();
    renderer()->RemoveAllLights();
    return frames();
}

/// The first frame of a body of few faces, which has the maps made.
Work buildMaps(unsigned) {
    physical(1000);
    window()->Render();
    return {[](unsigned) {
                setSky();
                window()->Render();
                window()->WaitForCompletion();
            },
            false};
}

Work background(unsigned) {
    openTorusView();
    const vtkNew<vtkSkybox> box;
    box->SetProjectionToSphere();
    box->SetTexture(makeSky(1));
    renderer()->AddActor(box);
    return {[](unsigned) { window()->Render(); }, true, 0.99};
}

// --- edges -------------------------------------------------------------------------------------------------

Work findEdges(unsigned size) {
    const Sheet sheet(size);
    const auto data = makePolyData(makeTriples(sheet.nodes), {}, sheet.triangles);
    return {[=](unsigned) {
                const vtkNew<vtkFeatureEdges> edges;
                edges->SetInputData(data);
                edges->ManifoldEdgesOn();
                edges->ColoringOff();
                edges->Update();
                check(edges->GetOutput()->GetNumberOfLines() > 0, "no edges");
            },
            false};
}

} // namespace

std::vector<Case> bodyCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, one = {100000};
    const char* buffers = "from its own buffers, filled once";
    return {{"body.renderer", all, classic, buffers},
            {"body.renderer_transparent", one, transparent,
             "one pass, not back faces first; from its own buffers"},
            {"body.physical", one, physical, "two lights in place of five; from its own buffers"},
            {"body.environment", one, environment, buffers},
            {"body.memory", all, classic, buffers},
            {"body.buffers", all, classic},
            {"body.library_mesh", one, classic, buffers},
            {"edges.library_mesh", {100000, 1000000}, findEdges, "edges as cells, without face normals"}};
}

std::vector<Case> lightingCases() {
    return {{"ibl.build", {1}, buildMaps, "from half the picture, without a cube map between", true},
            {"ibl.background", {1}, background, "samples the picture itself, not a cube map"}};
}

} // namespace nrubench
