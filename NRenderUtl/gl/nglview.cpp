// The view in GL: the model-view stack and transformations, and how the record's model-view follows them.
#include <algorithm>
#include <array>
#include <deque>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

using Matrix = std::array<double, 16>;

struct ViewState {
    /// Whether the record's model-view follows the matrix operations, so that picking sees what was drawn.
    const bool updateOnPick = hostBoolSetting("NU_UPDATE_NGLMAT_ON_PICK", true);
    std::deque<Matrix> shadow; ///< the record's model-view at each ngl_push_3d_matrix in force
    /// What ngl_get_view_matrix returns; nothing writes it.
    const Matrix viewMatrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
};

ViewState& viewState() {
    static ViewState state;
    return state;
}

/// The one place that reads the setting: when the library is loaded, so that it cannot change half-way.
[[maybe_unused]] const ViewState& kReadAtLoad = viewState();

bool recordFollowsGl() {
    return !nglRecord().beingDrawn && viewState().updateOnPick;
}

double* recordModelView() {
    return &nglRecord().live.modelView[0][0];
}

} // namespace

void ngl_push_3d_matrix() {
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    if (recordFollowsGl())
        std::copy_n(recordModelView(), 16, viewState().shadow.emplace_back().begin());
    ++nglRecord().pushCount3d;
}

void ngl_pop_3d_matrix() {
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    nglRecord().matricesCurrent = 0;
    std::deque<Matrix>& shadow = viewState().shadow;
    // A pop that has no push of its own leaves the record alone rather than end the process.
    if (recordFollowsGl() && !shadow.empty()) {
        std::copy_n(shadow.back().begin(), 16, recordModelView());
        shadow.pop_back();
    }
    --nglRecord().pushCount3d;
}

void ngl_push_view_matrices(int flag) {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    if (flag != 0)
        nglRecord().matricesCurrent = 0;
}

void ngl_pop_view_matrices(int flag) {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    if (flag != 0)
        nglRecord().matricesCurrent = 0;
}

void ngl_mult_3d_matrix(double matrix[4][4]) {
    glMatrixMode(GL_MODELVIEW);
    glMultMatrixd(&matrix[0][0]);
    NglRecordState& record = nglRecord();
    if (recordFollowsGl())
        NglMultiply(record.live.modelView, matrix, record.live.modelView);
    record.matricesCurrent = 0;
}

void ngl_set_3d_matrix(double matrix[4][4]) {
    ngl_init_3d_matrix();
    ngl_mult_3d_matrix(matrix);
}

void ngl_init_3d_matrix() {
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(recordModelView());
    nglRecord().matricesCurrent = 0;
}

void ngl_nullify_view() {
    ngl_mult_3d_matrix(nglRecord().live.inverseModelView);
}

void ngl_rotate_3d(double angle, int axis) {
    // Another letter leaves the axis zero, which GL is given as it is.
    const double x = axis == 'X' || axis == 'x', y = axis == 'Y' || axis == 'y',
                 z = axis == 'Z' || axis == 'z';
    glMatrixMode(GL_MODELVIEW);
    glRotated(angle, x, y, z);
    nglRecord().matricesCurrent = 0;
}

void ngl_scale_3d(double x, double y, double z) {
    glMatrixMode(GL_MODELVIEW);
    glScaled(x, y, z);
    nglRecord().matricesCurrent = 0;
}

void ngl_translate_3d(double x, double y, double z) {
    glMatrixMode(GL_MODELVIEW);
    glTranslated(x, y, z);
    nglRecord().matricesCurrent = 0;
}

void ngl_get_3d_matrix(double matrix[4][4]) {
    std::copy_n(recordModelView(), 16, &matrix[0][0]);
}

void ngl_get_global_matrix(double matrix[4][4]) {
    ngl_get_3d_matrix(matrix);
    std::fill_n(matrix[3], 3, 0.0);
}

void ngl_get_view_matrix(double matrix[4][4]) {
    std::copy_n(viewState().viewMatrix.begin(), 16, &matrix[0][0]);
}

void nglGetSilhoutteMatrix(double matrix[4][4]) {
    glGetDoublev(GL_MODELVIEW_MATRIX, &matrix[0][0]);
}

int NglGetPushCount() {
    return nglRecord().pushCount3d;
}
