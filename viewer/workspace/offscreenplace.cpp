#include "viewer/workspace/offscreenplace.h"

#include "viewer/error.h"

namespace nruview {

namespace {

void check(const std::string& problem) {
    if (!problem.empty())
        throw ViewerError("off-screen drawing", problem);
}

} // namespace

OffscreenPlace::OffscreenPlace(Model model, const Options& options)
    : m_width(options.width), m_height(options.height) {
    check(m_context.create(m_width, m_height));
    m_session.emplace(options.fixed);
    m_workspace.emplace(std::move(model), options);
}

void OffscreenPlace::resize(int width, int height) {
    check(m_context.resize(width, height));
    m_width = width;
    m_height = height;
    m_workspace->draw(width, height);
}

Pixels OffscreenPlace::picture() {
    m_workspace->draw(m_width, m_height);
    return readPixels(m_width, m_height);
}

} // namespace nruview
