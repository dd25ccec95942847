#include "Simple3DObject.h"

#include <limits>

Simple3DObject::Simple3DObject(bw::Translation position_, bool isStatic_)
    : isStatic(isStatic_), position(position_) {
    initializeGLFunctions();
}

Simple3DObject::~Simple3DObject() {
    ready = false;
    vao.release();
    // Only the first buffer is deleted; the colour and index buffers go with the context.
    glDeleteBuffers(1, vbo);
    vao.destroy();
}

void Simple3DObject::addPoint(float x, float y, float z, float r, float g, float b) {
    vertices.insert(vertices.end(), {x, y, z});
    colors.insert(colors.end(), {r, g, b});
    indices.push_back(static_cast<std::uint32_t>(indices.size()));
}

void Simple3DObject::addLine(bw::Vector3<float> p1, bw::Vector3<float> p2,
                             bw::Vector3<float> clr) {
    vertices.insert(vertices.end(), {p1.x, p1.y, p1.z, p2.x, p2.y, p2.z});
    colors.insert(colors.end(), {clr.x, clr.y, clr.z, clr.x, clr.y, clr.z});
    indices.push_back(static_cast<std::uint32_t>(indices.size()));
    indices.push_back(static_cast<std::uint32_t>(indices.size()));
}

bool Simple3DObject::pushToGPU() {
    if (isStatic && vao.isCreated()) {
        return true;
    }
    ready = false;
    if (!vao.isCreated()) {
        vao.create();
        glGenBuffers(3, vbo);
    }
    const GLenum usage = isStatic ? GL_STATIC_DRAW : GL_DYNAMIC_DRAW;
    vao.bind();
    glBindBuffer(GL_ARRAY_BUFFER, vbo[0]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(float)),
                 vertices.data(), usage);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(0);

    glBindBuffer(GL_ARRAY_BUFFER, vbo[1]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(colors.size() * sizeof(float)),
                 colors.data(), usage);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(1);

    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, vbo[2]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)), indices.data(),
                 usage);
    vao.release();
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    ready = true;
    return true;
}

void Simple3DObject::clear() {
    vertices.clear();
    colors.clear();
    indices.clear();
    ready = false;
}

void Simple3DObject::setDrawingType(unsigned type) { drawingType = type; }

void Simple3DObject::draw() {
    if (!ready) {
        return;
    }
    vao.bind();
    glDrawElements(drawingType, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_INT, nullptr);
    vao.release();
}

void Simple3DObject::translate(const bw::Translation& t) { position = position + t; }

void Simple3DObject::setPosition(const bw::Translation& t) { position = t; }

void Simple3DObject::setRT(const bw::Transform& mRT) {
    position = mRT.getTranslation();
    rotation = mRT.getOrientation();
}

void Simple3DObject::rotate(const bw::Orientation& q) { rotation = q * rotation; }

void Simple3DObject::rotate(const bw::Rotation& r) { rotate(bw::Orientation(r)); }

void Simple3DObject::setRotation(const bw::Orientation& q) { rotation = q; }

void Simple3DObject::setRotation(const bw::Rotation& r) { rotation = bw::Orientation(r); }

bw::Transform Simple3DObject::getModelMatrix() const {
    bw::Transform model;
    model.setIdentity();
    model.setOrientation(rotation);
    model.setTranslation(position);
    return model;
}

DynAxis::DynAxis()
    : Simple3DObject(bw::Translation(0.f, 0.f, 0.f), false),
      lastX(std::numeric_limits<float>::quiet_NaN()),
      lastY(std::numeric_limits<float>::quiet_NaN()),
      lastZ(std::numeric_limits<float>::quiet_NaN()) {}

void DynAxis::draw(float x, float y, float z) {
    if (x == lastX && y == lastY && z == lastZ) {
        return;
    }
    clear();
    setDrawingType(1);  // GL_LINES
    const bw::Vector3<float> origin(0.f, 0.f, 0.f);
    addLine(origin, bw::Vector3<float>(-0.15f * x, 0.f, 0.f),
            bw::Vector3<float>(0.7843137f, 0.2745098f, 0.2745098f));
    addLine(origin, bw::Vector3<float>(0.f, -0.15f * y, 0.f),
            bw::Vector3<float>(0.15686275f, 0.7843137f, 0.49019608f));
    addLine(origin, bw::Vector3<float>(0.f, 0.f, -0.15f * z),
            bw::Vector3<float>(0.0f, 0.39215687f, 0.7843137f));
    pushToGPU();
    glLineWidth(20.0f);
    Simple3DObject::draw();
}

void fillORYX(int triangleCount, float* vertices, int* triangles, bw::Vector3<float> color,
              Simple3DObject* object) {
    for (int t = 0; t < triangleCount; ++t) {
        for (int corner = 0; corner < 3; ++corner) {
            const int n = triangles[3 * t + corner] - 1;
            object->addPoint(vertices[3 * n], vertices[3 * n + 1], vertices[3 * n + 2], color.x,
                             color.y, color.z);
        }
    }
}
