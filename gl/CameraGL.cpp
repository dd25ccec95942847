#include "CameraGL.h"

#include <cmath>

#include "Angles.h"

const bw::Translation CameraGL::ORIGINAL_FORWARD(0.f, 0.f, 1.f);
const bw::Translation CameraGL::ORIGINAL_UP(0.f, 1.f, 0.f);
const bw::Translation CameraGL::ORIGINAL_RIGHT(1.f, 0.f, 0.f);

CameraGL::CameraGL(bw::Translation position_, bw::Translation direction,
                   bw::Translation vertical_) {
    forward = up = right = bw::Translation(0.f, 0.f, 0.f);
    position = position_;
    setDirection(direction, vertical_);
    offset = bw::Translation(0.f, 0.f, 0.f);
    view.setIdentity();
    updateView();
    updateVPMatrix();
}

void CameraGL::update() {
    if (bw::Translation::dot(vertical, up) < 0.f) {
        vertical = -vertical;
    }
    updateView();
    updateVPMatrix();
}

void CameraGL::setProjection(float horizontalFOV, float verticalFOV, float znear_, float zfar_) {
    horizontalFieldOfView = horizontalFOV;
    verticalFieldOfView = verticalFOV;
    znear = znear_;
    zfar = zfar_;
    const double fovx = radiansFromDegrees(horizontalFOV * 0.5);
    const double fovy = radiansFromDegrees(verticalFOV * 0.5);
    projection.setIdentity();
    projection(0, 0) = static_cast<float>(1.0 / std::tan(fovx));
    projection(1, 1) = static_cast<float>(1.0 / std::tan(fovy));
    // Depth row maps [near, far] onto [0, 1].
    projection(2, 2) = -(zfar / (zfar - znear));
    projection(3, 2) = -1.f;
    projection(2, 3) = -(zfar * znear) / (zfar - znear);
    projection(3, 3) = 0.f;
}

void CameraGL::setDirection(const bw::Translation& direction, const bw::Translation& vertical_) {
    const bw::Translation d = bw::Translation::normalize(direction);
    rotation = bw::Orientation(ORIGINAL_FORWARD, -d);
    updateVectors();
    vertical = vertical_;
    if (bw::Translation::dot(vertical, up) < 0.f) {
        rotate(bw::Rotation(static_cast<float>(kPi), ORIGINAL_FORWARD));
    }
}

void CameraGL::translate(const bw::Translation& t) { position = position + t; }

void CameraGL::rotate(const bw::Orientation& q) {
    rotation = q * rotation;
    updateVectors();
}

void CameraGL::rotate(const bw::Rotation& r) { rotate(bw::Orientation(r)); }

void CameraGL::setRotation(const bw::Orientation& q) {
    rotation = q;
    updateVectors();
}

void CameraGL::setRotation(const bw::Rotation& r) { setRotation(bw::Orientation(r)); }

void CameraGL::updateVectors() {
    forward = ORIGINAL_FORWARD * rotation;
    up = ORIGINAL_UP * rotation;
    right = (-ORIGINAL_RIGHT) * rotation;
}

void CameraGL::updateView() {
    const bw::Translation eye = position + offset * rotation;
    const bw::Transform transformation(rotation, eye);
    view = bw::Transform::inverse(transformation);
}

void CameraGL::updateVPMatrix() { vpMatrix = projection * view; }
