// The geometry value types against Eigen as the reference, and the conventions the viewer's
// 3D code relies on: x-y-z-w quaternions, q1 * q2 applies q2 first, Euler angles turning about
// y, then x, then z. Matrix inversion is checked through the viewer camera's view matrix.
#include <Eigen/Geometry>
#include <QtTest>
#include <algorithm>
#include <bw/geometry.hpp>
#include <cmath>

Q_DECLARE_METATYPE(bw::Translation)

using namespace bw;

namespace {

constexpr float kTol = 1e-5f;

Eigen::Quaternionf eig(const Orientation& q) { return {q.w, q.x, q.y, q.z}; }
Eigen::Vector3f eig(const Vector3<float>& v) { return {v.x, v.y, v.z}; }

Orientation orientation(float angle, Eigen::Vector3f axis) {
    const Eigen::Quaternionf q(Eigen::AngleAxisf(angle, axis.normalized()));
    return {q.x(), q.y(), q.z(), q.w()};
}

bool near(const Vector3<float>& a, const Eigen::Vector3f& b, float tol = kTol) {
    return (eig(a) - b).norm() < tol;
}

// q and -q are the same rotation.
bool sameRotation(const Orientation& a, const Eigen::Quaternionf& b, float tol = kTol) {
    return std::abs(std::abs(eig(a).dot(b)) - 1.f) < tol;
}

}  // namespace

class TestGeometry : public QObject {
    Q_OBJECT

private slots:
    void quaternionProductAppliesRightOperandFirst() {
        const Orientation a = orientation(0.7f, {1, 2, 3});
        const Orientation b = orientation(-1.3f, {-2, 0.5f, 1});
        QVERIFY(sameRotation(a * b, eig(a) * eig(b)));

        const Translation v(0.3f, -1.2f, 2.f);
        QVERIFY(near(v * (a * b), eig(a) * (eig(b) * eig(v))));
        QVERIFY(near((v * b) * a, eig(a) * (eig(b) * eig(v))));
    }

    void rotationBetweenTwoVectors_data() {
        QTest::addColumn<Translation>("from");
        QTest::addColumn<Translation>("to");
        QTest::newRow("generic") << Translation(1, 0, 0) << Translation(0, 2, 2);
        QTest::newRow("identical") << Translation(0, 0, 1) << Translation(0, 0, 1);
        QTest::newRow("antiparallel oblique") << Translation(1, 2, 3) << Translation(-2, -4, -6);
    }

    void rotationBetweenTwoVectors() {
        QFETCH(Translation, from);
        QFETCH(Translation, to);
        const Orientation q(from, to);
        QVERIFY(std::abs(q.norm() - 1.f) < kTol);
        QVERIFY(near(Translation::normalize(from) * q, eig(Translation::normalize(to))));
        // Shortest rotation: its angle is the angle between the vectors.
        const float expected = std::acos(std::clamp(
            Translation::dot(Translation::normalize(from), Translation::normalize(to)), -1.f, 1.f));
        QVERIFY(std::abs(2.f * std::acos(std::min(1.f, std::abs(q.w))) - expected) < 1e-3f);
    }

    // b * a moves a point through a first, then through b.
    void transformProductAppliesRightOperandFirst() {
        const Transform a(orientation(1.1f, {0, 1, 1}), Translation(1, 2, 3));
        const Transform b(orientation(-0.5f, {1, 0, 0}), Translation(0, 0, -1));
        const Transform ab = b * a;
        const Eigen::Vector3f x(0.5f, -1, 2);
        const Eigen::Vector3f viaA = eig(a.getOrientation()) * x + eig(a.getTranslation());
        const Eigen::Vector3f expected = eig(b.getOrientation()) * viaA + eig(b.getTranslation());
        QVERIFY(near(Translation(x.x(), x.y(), x.z()) * ab.getOrientation() + ab.getTranslation(),
                     expected));
    }

    void eulerAnglesRoundTrip() {
        const float step = 0.5f;
        for (float x = -1.4f; x <= 1.4f; x += step) {  // away from the +/-90 deg lock
            for (float y = -3.f; y <= 3.f; y += step) {
                for (float z = -3.f; z <= 3.f; z += step) {
                    // Yaw about y, then pitch about x, then roll about z.
                    const Eigen::Quaternionf ref = Eigen::AngleAxisf(y, Eigen::Vector3f::UnitY()) *
                                                   Eigen::AngleAxisf(x, Eigen::Vector3f::UnitX()) *
                                                   Eigen::AngleAxisf(z, Eigen::Vector3f::UnitZ());
                    Transform t;
                    t.setEulerAngles({x, y, z});
                    QVERIFY(sameRotation(t.getOrientation(), ref, 1e-4f));
                    const Vector3<float> back =
                        Transform(Orientation(ref.x(), ref.y(), ref.z(), ref.w()), Translation())
                            .getEulerAngles(true);
                    QVERIFY2(near(back, {x, y, z}, 1e-3f),
                             qPrintable(QString("%1 %2 %3").arg(x).arg(y).arg(z)));
                }
            }
        }
        Rotation r;
        r.setEulerAngles({30, -20, 10}, false);
        QVERIFY(near(r.getEulerAngles(false), {30, -20, 10}, 1e-3f));
    }
};

QTEST_APPLESS_MAIN(TestGeometry)
#include "tst_geometry.moc"
