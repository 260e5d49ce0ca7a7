#pragma once

// OpenGL with the functions beyond 1.1 declared.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
