// GLSL texts of the orientation view's scene program and of the (unused) point cloud program.
#pragma once

extern const char* VERTEX_SHADER;
extern const char* FRAGMENT_SHADER;
extern const char* POINTCLOUD_VERTEX_SHADER;
extern const char* POINTCLOUD_FRAGMENT_SHADER;
