// What one frame of the orientation view depends on, and whether the next frame would look
// different from the last one drawn. Lets a view on a software renderer skip frames that would
// repeat the picture on the screen.
#pragma once

#include <bw/geometry.hpp>
#include <vector>

struct ViewFrame {
    int scene = 0;                    // which scene InitProcess built; 0 before the first
    float width = 0.f, height = 0.f;  // framebuffer pixels
    bw::Matrix4f viewProjection;      // of the viewer camera
    bw::Transform model;              // pose of the camera model
    bw::Vector3<float> gravity;       // vector given to the dynamic triad
    int movingState = 0;
};

// Smallest movement on screen, in pixels, of a point of the model or of the dynamic triad that
// is worth a new frame. Without multisampling every edge snaps to whole pixels, so a smaller
// shift only trades which pixels an edge touches.
inline constexpr float kVisibleShiftPx = 1.f;

// Whether `now` would be drawn differently from `drawn`: another scene, size, viewpoint or motion
// state, or a point of `modelPoints` (in the model's frame, e.g. the corners of its bounding box)
// or a tip of the dynamic triad moving by kVisibleShiftPx or more on screen.
bool looksDifferent(const ViewFrame& drawn, const ViewFrame& now,
                    const std::vector<bw::Vector3<float>>& modelPoints);

// The eight corners of the bounding box of a list of x, y, z triples.
std::vector<bw::Vector3<float>> boundingBoxCorners(const std::vector<float>& xyz);
