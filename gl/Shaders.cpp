#include "Shaders.h"

const char* VERTEX_SHADER =
    "#version 330 core\n"
    "layout(location = 0) in vec3 in_Vertex;\n"
    "layout(location = 1) in vec3 in_Color;\n"
    "uniform mat4 u_mvpMatrix;\n"
    "out vec3 b_color;\n"
    "void main() {\n"
    "   b_color = in_Color;\n"
    "\tgl_Position = u_mvpMatrix * vec4(in_Vertex.xyz, 1);\n"
    "}";

const char* FRAGMENT_SHADER =
    "#version 330 core\n"
    "in vec3 b_color;\n"
    "layout(location = 0) out vec4 out_Color;\n"
    "void main() {\n"
    "   out_Color = vec4(b_color, 0.5);\n"
    "}";

// The w component carries a packed colour: its float bits read as an unsigned integer hold
// r, g and b in the low three bytes.
const char* POINTCLOUD_VERTEX_SHADER =
    "#version 330 core\n"
    "layout(location = 0) in vec4 in_VertexRGBA;\n"
    "uniform mat4 u_mvpMatrix;\n"
    "out vec4 b_color;\n"
    "vec4 packFloatToVec4i(const float value) {\n"
    "   const vec4 bitSh = vec4(256.0 * 256.0 * 256.0, 256.0 * 256.0, 256.0, 1.0);\n"
    "   const vec4 bitMsk = vec4(0.0, 1.0 / 256.0, 1.0 / 256.0, 1.0 / 256.0);\n"
    "   vec4 res = fract(value * bitSh);\n"
    "   res -= res.xxyz * bitMsk;\n"
    "   return res;\n"
    "}\n"
    "vec4 decomposeFloat(const in float value) {\n"
    "   uint rgbaInt = floatBitsToUint(value);\n"
    "   uint bIntValue = (rgbaInt / 256U / 256U) % 256U;\n"
    "   uint gIntValue = (rgbaInt / 256U) % 256U;\n"
    "   uint rIntValue = (rgbaInt) % 256U;\n"
    "   return vec4(rIntValue / 255.0f, gIntValue / 255.0f, bIntValue / 255.0f, 1.0);\n"
    "}\n"
    "void main() {\n"
    "   vec4 clr = decomposeFloat(in_VertexRGBA.a);\n"
    "   gl_Position = u_mvpMatrix * vec4(in_VertexRGBA.xyz, 1);\n"
    "   b_color = vec4(clr.rgb, gl_Position.z);\n"
    "   gl_PointSize = 1.5;\n"
    "}";

const char* POINTCLOUD_FRAGMENT_SHADER =
    "#version 330 core\n"
    "in vec4 b_color;\n"
    "layout(location = 0) out vec4 out_Color;\n"
    "void main() {\n"
    "   out_Color = b_color;\n"
    "}";
