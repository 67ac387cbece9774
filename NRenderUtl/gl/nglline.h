// The line width, for rooms that set it whatever is current.
#pragma once

/// Issues a width, 1 or more, to GL and keeps it as the current one.
void nglIssueLineWidth(int width);
