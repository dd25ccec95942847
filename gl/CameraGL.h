// The viewer camera of the orientation view: position, frame vectors, projection and view.
// Holds no GL state.
#pragma once

#include <bw/geometry.hpp>

class CameraGL {
public:
    CameraGL(bw::Translation position, bw::Translation direction, bw::Translation vertical);

    void update();
    void setProjection(float horizontalFOV, float verticalFOV, float znear, float zfar);
    const bw::Transform& getViewProjectionMatrix() const { return vpMatrix; }
    const bw::Transform& getProjection() const { return projection; }
    const bw::Transform& getView() const { return view; }

    float getHorizontalFOV() const { return horizontalFieldOfView; }
    float getVerticalFOV() const { return verticalFieldOfView; }
    float getZNear() const { return znear; }
    float getZFar() const { return zfar; }

    void setOffsetFromPosition(const bw::Translation& o) { offset = o; }
    const bw::Translation& getOffsetFromPosition() const { return offset; }

    void setDirection(const bw::Translation& direction, const bw::Translation& vertical);
    void translate(const bw::Translation& t);
    void setPosition(const bw::Translation& p) { position = p; }
    void rotate(const bw::Orientation& q);
    void rotate(const bw::Rotation& r);
    void setRotation(const bw::Orientation& q);
    void setRotation(const bw::Rotation& r);

    const bw::Translation& getPosition() const { return position; }
    const bw::Translation& getForward() const { return forward; }
    const bw::Translation& getRight() const { return right; }
    const bw::Translation& getUp() const { return up; }
    const bw::Translation& getVertical() const { return vertical; }
    const bw::Orientation& getOrientation() const { return rotation; }

    void updateVectors();
    void updateView();
    void updateVPMatrix();

    static const bw::Translation ORIGINAL_FORWARD;
    static const bw::Translation ORIGINAL_UP;
    static const bw::Translation ORIGINAL_RIGHT;

private:
    bw::Transform projection;
    bw::Translation offset;
    bw::Translation position;
    bw::Translation forward;
    bw::Translation up;
    bw::Translation right;
    bw::Translation vertical;
    bw::Orientation rotation;
    bw::Transform view;
    bw::Transform vpMatrix;
    float horizontalFieldOfView = 0.f;
    float verticalFieldOfView = 0.f;
    float znear = 0.f;
    float zfar = 0.f;
};
