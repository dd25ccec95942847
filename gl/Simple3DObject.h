// Coloured primitives uploaded to buffer objects, the dynamic axis triad, and the mesh filler.
// Every object needs a current GL context from construction to destruction.
#pragma once

#include <QGLFunctions>
#include <QOpenGLVertexArrayObject>
#include <bw/geometry.hpp>
#include <cstdint>
#include <vector>

class Simple3DObject : protected QGLFunctions {
public:
    Simple3DObject(bw::Translation position, bool isStatic);
    virtual ~Simple3DObject();
    Simple3DObject(const Simple3DObject&) = delete;
    Simple3DObject& operator=(const Simple3DObject&) = delete;

    void addPoint(float x, float y, float z, float r, float g, float b);
    void addLine(bw::Vector3<float> p1, bw::Vector3<float> p2, bw::Vector3<float> clr);
    bool pushToGPU();
    void clear();
    void setDrawingType(unsigned type);
    void draw();

    void translate(const bw::Translation& t);
    void setPosition(const bw::Translation& t);
    void setRT(const bw::Transform& mRT);
    void rotate(const bw::Orientation& q);
    void rotate(const bw::Rotation& r);
    void setRotation(const bw::Orientation& q);
    void setRotation(const bw::Rotation& r);
    bw::Translation getPosition() const { return position; }
    bw::Orientation getRotation() const { return rotation; }
    bw::Transform getModelMatrix() const;

    const std::vector<float>& getVertices() const { return vertices; }
    const std::vector<float>& getColors() const { return colors; }
    const std::vector<std::uint32_t>& getIndices() const { return indices; }
    bool isReady() const { return ready; }
    unsigned getDrawingType() const { return drawingType; }

protected:
    std::vector<float> vertices;
    std::vector<float> colors;
    std::vector<std::uint32_t> indices;
    bool isStatic;
    bool ready = false;
    std::uint32_t drawingType = 4;  // GL_TRIANGLES
    QOpenGLVertexArrayObject vao;
    GLuint vbo[3] = {0, 0, 0};
    bw::Translation position;
    bw::Orientation rotation;
};

// A triad of three short segments from the origin, rebuilt for each vector it is asked to draw.
class DynAxis : public Simple3DObject {
public:
    DynAxis();
    void draw(float x, float y, float z);
    using Simple3DObject::draw;

private:
    // Compared with the vector to draw; never updated, so the triad is rebuilt on every call.
    float lastX, lastY, lastZ;
};

// Adds triangleCount triangles of a mesh table to object, one point per corner, in one colour.
// triangles holds 1-based vertex numbers into vertices (x, y, z triples).
void fillORYX(int triangleCount, float* vertices, int* triangles, bw::Vector3<float> color,
              Simple3DObject* object);
