// The benchmarks' work by VTK, off-screen. Its window is one of GLX: without an X server there is none.
#include "bench/peers/vtk/vtk.h"

namespace nrubench {

namespace {

std::vector<std::uint32_t> readPixels() {
    const vtkNew<vtkUnsignedCharArray> bytes;
    window()->GetRGBACharPixelData(0, 0, kWidth - 1, kHeight - 1, 0, bytes);
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        for (unsigned k = 0; k < 4; ++k)
            pixels[i] |= static_cast<std::uint32_t>(bytes->GetValue(static_cast<vtkIdType>(4 * i + k)))
                         << 8 * k;
    return pixels;
}

std::string driver() {
    if (!renderer()->GetRenderWindow() || window()->GetNeverRendered())
        return {};
    const std::string report = window()->ReportCapabilities();
    const auto line = [&](const std::string& key) {
        const std::size_t at = report.find(key) + key.size();
        return report.find(key) == report.npos ? "" : report.substr(at, report.find('\n', at) - at);
    };
    return line("OpenGL renderer string:  ") + ", " + line("OpenGL version string:  ");
}

} // namespace

} // namespace nrubench

int main(int count, char** arguments) {
    using namespace nrubench;
    std::vector<Case> cases;
    for (const auto family : {meshCases, bodyCases, dotCases, markerCases, pickCases, lightingCases})
        append(cases, family());
    // Render clears by itself.
    return runProgram(
        count, arguments,
        {"vtk", std::move(cases), [] {}, [] { window()->WaitForCompletion(); }, readPixels, driver});
}
