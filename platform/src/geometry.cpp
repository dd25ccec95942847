// Arithmetic of the geometry value types. The public types are plain float arrays; the maths is
// done by mapping them onto Eigen types, so every convention here is Eigen's: Hamilton
// quaternions, active rotations, q1 * q2 applies q2 first.
#include "physics/Angles.hpp"

#include <Eigen/Dense>
#include <Eigen/Geometry>
#include <algorithm>
#include <bw/geometry.hpp>
#include <cmath>

namespace bw {

namespace {

using Mat3 = Eigen::Matrix<float, 3, 3, Eigen::RowMajor>;
using Mat4 = Eigen::Matrix<float, 4, 4, Eigen::RowMajor>;

constexpr float kPi = static_cast<float>(sim::kPi);
constexpr float kRadToDeg = 180.f / kPi;
constexpr float kDegToRad = kPi / 180.f;

Eigen::Vector3f toEigen(const Vector3<float>& v) { return {v.x, v.y, v.z}; }

Translation toTranslation(const Eigen::Vector3f& v) { return {v.x(), v.y(), v.z()}; }

Eigen::Quaternionf toEigen(const Orientation& q) { return {q.w, q.x, q.y, q.z}; }

Orientation toOrientation(const Eigen::Quaternionf& q) { return {q.x(), q.y(), q.z(), q.w()}; }

Eigen::Map<Mat3> map(Matrix3f& m) { return Eigen::Map<Mat3>(m.r); }
Eigen::Map<const Mat3> map(const Matrix3f& m) { return Eigen::Map<const Mat3>(m.r); }
Eigen::Map<Mat4> map(Matrix4f& m) { return Eigen::Map<Mat4>(m.m); }
Eigen::Map<const Mat4> map(const Matrix4f& m) { return Eigen::Map<const Mat4>(m.m); }

Rotation toRotation(const Mat3& m) {
    Matrix3f out;
    map(out) = m;
    return Rotation(out);
}

// A rotation matrix that is slightly off orthonormal (float round-off, user input) still gives a
// unit quaternion.
Orientation orientationOf(const Mat3& m) {
    Eigen::Quaternionf q(m);
    q.normalize();
    return toOrientation(q);
}

}  // namespace

// ---- Translation ------------------------------------------------------------------------------

Translation Translation::operator+(const Translation& o) const {
    return {x + o.x, y + o.y, z + o.z};
}

Translation Translation::operator-(const Translation& o) const {
    return {x - o.x, y - o.y, z - o.z};
}

Translation Translation::operator-() const { return {-x, -y, -z}; }

Translation Translation::operator*(float s) const { return {x * s, y * s, z * s}; }

Translation& Translation::operator+=(const Translation& o) {
    *this = *this + o;
    return *this;
}

Translation Translation::operator*(const Orientation& q) const {
    return toTranslation(toEigen(q) * toEigen(*this));
}

float Translation::norm() const { return toEigen(*this).norm(); }

void Translation::normalize() { *this = normalize(*this); }

Translation Translation::normalize(const Translation& t) {
    const float n = t.norm();
    // A zero vector has no direction; keep it rather than produce NaNs.
    return n > 0.f ? t * (1.f / n) : t;
}

float Translation::dot(const Translation& a, const Translation& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// ---- Matrix3f / Rotation ----------------------------------------------------------------------

Matrix3f::Matrix3f() { setIdentity(); }

void Matrix3f::setIdentity() { map(*this).setIdentity(); }

Matrix3f Matrix3f::operator*(const Matrix3f& o) const {
    Matrix3f out;
    map(out) = map(*this) * map(o);
    return out;
}

Matrix3f Matrix3f::transpose() const {
    Matrix3f out;
    map(out) = map(*this).transpose();
    return out;
}

bool Matrix3f::operator==(const Matrix3f& o) const { return std::equal(r, r + 9, o.r); }

Rotation::Rotation() = default;

Rotation::Rotation(const Matrix3f& m) : Matrix3f(m) {}

Rotation::Rotation(const Orientation& q) { setOrientation(q); }

Rotation::Rotation(float angleRad, const Translation& axis) {
    const Eigen::Vector3f a = toEigen(axis);
    if (a.norm() > 0.f) {
        map(*this) = Eigen::AngleAxisf(angleRad, a.normalized()).toRotationMatrix();
    }
}

Orientation Rotation::getOrientation() const { return orientationOf(map(*this)); }

void Rotation::setOrientation(const Orientation& q) {
    map(*this) = toEigen(q).normalized().toRotationMatrix();
}

// Euler angles (x, y, z) of R = Ry(y) * Rx(x) * Rz(z). In the image frame (x right, y down,
// z forward) that is yaw about the vertical, then pitch, then roll about the optical axis: a level
// camera may face any heading, and only the pitch is held to +/-90 degrees.
Vector3<float> Rotation::getEulerAngles(bool radian) const {
    // R12 = -sin x, R10 = cos x sin z, R11 = cos x cos z, R02 = sin y cos x, R22 = cos y cos x.
    const auto R = map(*this);
    const float s = std::clamp(-R(1, 2), -1.f, 1.f);
    const float x = std::asin(s);
    float y = 0.f;
    float z = 0.f;
    if (std::abs(s) < 0.99999f) {
        y = std::atan2(R(0, 2), R(2, 2));
        z = std::atan2(R(1, 0), R(1, 1));
    } else {
        // Gimbal lock: only y +/- z is defined; put it all into y.
        y = std::atan2(-R(2, 0), R(0, 0));
    }
    const float k = radian ? 1.f : kRadToDeg;
    return {x * k, y * k, z * k};
}

void Rotation::setEulerAngles(const Vector3<float>& angles, bool radian) {
    const float k = radian ? 1.f : kDegToRad;
    const Eigen::Matrix3f m = (Eigen::AngleAxisf(angles.y * k, Eigen::Vector3f::UnitY()) *
                               Eigen::AngleAxisf(angles.x * k, Eigen::Vector3f::UnitX()) *
                               Eigen::AngleAxisf(angles.z * k, Eigen::Vector3f::UnitZ()))
                                  .toRotationMatrix();
    map(*this) = m;
}

// ---- Orientation ------------------------------------------------------------------------------

Orientation::Orientation(const Rotation& r) : Orientation(r.getOrientation()) {}

Orientation::Orientation(const Translation& from, const Translation& to) {
    const Eigen::Vector3d a = toEigen(from).cast<double>();
    const Eigen::Vector3d b = toEigen(to).cast<double>();
    if (a.norm() == 0.0 || b.norm() == 0.0) {
        return;  // no direction to turn: identity
    }
    // FromTwoVectors picks an axis perpendicular to `from` when the vectors are antiparallel;
    // in float its test for that case is too coarse, hence double.
    const Eigen::Quaterniond q = Eigen::Quaterniond::FromTwoVectors(a, b).normalized();
    *this = toOrientation(q.cast<float>());
}

Orientation Orientation::operator*(const Orientation& o) const {
    return toOrientation(toEigen(*this) * toEigen(o));
}

void Orientation::normalise() { *this = normalise(*this); }

Orientation Orientation::normalise(const Orientation& q) {
    const float n = q.norm();
    return n > 0.f ? Orientation(q.x / n, q.y / n, q.z / n, q.w / n) : Orientation();
}

float Orientation::norm() const { return toEigen(*this).norm(); }

Rotation Orientation::getRotationMatrix() const { return Rotation(*this); }

// ---- Matrix4f ---------------------------------------------------------------------------------

Matrix4f::Matrix4f() { setIdentity(); }

void Matrix4f::setIdentity() { map(*this).setIdentity(); }

void Matrix4f::setZeros() { map(*this).setZero(); }

bool Matrix4f::inverse() {
    // Full pivoting judges singularity relative to the matrix's own scale, so small but
    // well-conditioned matrices (projections with tiny entries) still invert.
    const Eigen::FullPivLU<Mat4> lu(map(*this));
    if (!lu.isInvertible()) {
        return false;
    }
    map(*this) = lu.inverse();
    return true;
}

Matrix4f Matrix4f::inverse(const Matrix4f& mat) {
    Matrix4f out = mat;
    out.inverse();
    return out;
}

void Matrix4f::transpose() { map(*this).transposeInPlace(); }

Matrix4f Matrix4f::transpose(const Matrix4f& mat) {
    Matrix4f out = mat;
    out.transpose();
    return out;
}

Matrix4f Matrix4f::operator*(const Matrix4f& o) const {
    Matrix4f out;
    map(out) = map(*this) * map(o);
    return out;
}

bool Matrix4f::operator==(const Matrix4f& o) const { return std::equal(m, m + 16, o.m); }

// ---- Transform --------------------------------------------------------------------------------

Transform::Transform(const Orientation& orientation, const Translation& translation) {
    setOrientation(orientation);
    setTranslation(translation);
}

Transform::Transform(const Rotation& rotation, const Translation& translation) {
    setRotationMatrix(rotation);
    setTranslation(translation);
}

Translation Transform::getTranslation() const {
    return {(*this)(0, 3), (*this)(1, 3), (*this)(2, 3)};
}

void Transform::setTranslation(const Translation& t) {
    (*this)(0, 3) = t.x;
    (*this)(1, 3) = t.y;
    (*this)(2, 3) = t.z;
}

Orientation Transform::getOrientation() const {
    return orientationOf(map(*this).topLeftCorner<3, 3>());
}

void Transform::setOrientation(const Orientation& q) { setRotationMatrix(Rotation(q)); }

Rotation Transform::getRotationMatrix() const {
    return toRotation(map(*this).topLeftCorner<3, 3>());
}

void Transform::setRotationMatrix(const Rotation& r) { map(*this).topLeftCorner<3, 3>() = map(r); }

Vector3<float> Transform::getEulerAngles(bool radian) const {
    return getRotationMatrix().getEulerAngles(radian);
}

void Transform::setEulerAngles(const Vector3<float>& angles, bool radian) {
    Rotation r;
    r.setEulerAngles(angles, radian);
    setRotationMatrix(r);
}

Transform Transform::operator*(const Transform& o) const {
    return Transform(Matrix4f::operator*(o));
}

Transform Transform::inverse(const Transform& t) { return Transform(Matrix4f::inverse(t)); }

}  // namespace bw
