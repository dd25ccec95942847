// Geometry value types of the bw camera API: vectors, quaternions, rotations and row-major 4x4
// transforms. Plain value types; the arithmetic lives in geometry.cpp.
#pragma once

namespace bw {

template <typename T>
struct Vector3 {
    T x{}, y{}, z{};

    Vector3() = default;
    Vector3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}

    // Colour access for vectors that hold r, g, b.
    T r() const { return x; }
    T g() const { return y; }
    T b() const { return z; }

    T& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
    const T& operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    bool operator==(const Vector3& o) const { return x == o.x && y == o.y && z == o.z; }
    bool operator!=(const Vector3& o) const { return !(*this == o); }
};

class Orientation;
class Rotation;

// A position or direction in metres (x, y, z).
class Translation : public Vector3<float> {
public:
    Translation() = default;
    Translation(float x_, float y_, float z_) : Vector3<float>(x_, y_, z_) {}
    explicit Translation(const Vector3<float>& v) : Vector3<float>(v) {}

    Translation operator+(const Translation& o) const;
    Translation operator-(const Translation& o) const;
    Translation operator-() const;
    Translation operator*(float s) const;
    Translation& operator+=(const Translation& o);
    // The vector rotated by the quaternion.
    Translation operator*(const Orientation& q) const;

    float norm() const;
    void normalize();
    static Translation normalize(const Translation& t);
    static float dot(const Translation& a, const Translation& b);
};

// Row-major 3x3 float matrix.
class Matrix3f {
public:
    float r[9];

    Matrix3f();  // identity
    float& operator()(int row, int col) { return r[row * 3 + col]; }
    float operator()(int row, int col) const { return r[row * 3 + col]; }
    void setIdentity();
    Matrix3f operator*(const Matrix3f& o) const;
    Matrix3f transpose() const;
    bool operator==(const Matrix3f& o) const;
};

// A 3x3 rotation matrix.
class Rotation : public Matrix3f {
public:
    Rotation();  // identity
    explicit Rotation(const Matrix3f& m);
    explicit Rotation(const Orientation& q);
    // A turn of angleRad radians about axis (the axis need not be unit length).
    Rotation(float angleRad, const Translation& axis);

    Orientation getOrientation() const;
    void setOrientation(const Orientation& q);
    // Euler angles (x, y, z) of the rotation R = Ry * Rx * Rz, in radians or degrees: in the
    // image frame, yaw about y, then pitch about x (held to +/-90 degrees), then roll about z.
    Vector3<float> getEulerAngles(bool radian = true) const;
    void setEulerAngles(const Vector3<float>& angles, bool radian = true);
};

// A unit quaternion stored as x, y, z, w.
class Orientation {
public:
    float x = 0.f, y = 0.f, z = 0.f, w = 1.f;

    Orientation() = default;  // identity
    Orientation(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    explicit Orientation(const Rotation& r);
    // The shortest rotation that takes direction `from` onto direction `to`.
    Orientation(const Translation& from, const Translation& to);

    static Orientation identity() { return Orientation(); }
    void setIdentity() { *this = Orientation(); }
    Orientation operator*(const Orientation& o) const;  // apply o first, then this
    Orientation conjugate() const { return Orientation(-x, -y, -z, w); }
    void normalise();
    static Orientation normalise(const Orientation& q);
    float norm() const;
    Rotation getRotationMatrix() const;
    bool operator==(const Orientation& o) const {
        return x == o.x && y == o.y && z == o.z && w == o.w;
    }
};

// Row-major 4x4 float matrix, indexed (row, column).
class Matrix4f {
public:
    float m[16];

    Matrix4f();  // identity
    float& operator()(int row, int col) { return m[row * 4 + col]; }
    float operator()(int row, int col) const { return m[row * 4 + col]; }

    static Matrix4f identity() { return Matrix4f(); }
    void setIdentity();
    void setZeros();
    // Inverts in place; returns false (and leaves the matrix) when it is singular.
    bool inverse();
    static Matrix4f inverse(const Matrix4f& mat);
    void transpose();
    static Matrix4f transpose(const Matrix4f& mat);
    Matrix4f operator*(const Matrix4f& o) const;
    bool operator==(const Matrix4f& o) const;
};

// A rigid transform [R | t] held as a 4x4 matrix.
class Transform : public Matrix4f {
public:
    Transform() = default;  // identity
    explicit Transform(const Matrix4f& mat) : Matrix4f(mat) {}
    Transform(const Orientation& orientation, const Translation& translation);
    Transform(const Rotation& rotation, const Translation& translation);

    Translation getTranslation() const;
    void setTranslation(const Translation& t);
    Orientation getOrientation() const;
    void setOrientation(const Orientation& q);
    Rotation getRotationMatrix() const;
    void setRotationMatrix(const Rotation& r);
    // Euler angles (x, y, z) of the rotation part, as Rotation::getEulerAngles.
    Vector3<float> getEulerAngles(bool radian = true) const;
    void setEulerAngles(const Vector3<float>& angles, bool radian = true);

    Transform operator*(const Transform& o) const;
    static Transform inverse(const Transform& t);
};

}  // namespace bw
