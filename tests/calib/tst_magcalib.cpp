#include <QtTest>
#include <cmath>
#include <vector>

#include "mag_calib.h"
#include "orientcount.h"

namespace {

struct Cloud {
    Eigen::VectorXd x, y, z;
};

// n points spread over the unit sphere (a golden-angle spiral: no two alike, no symmetry that
// could make the fit's matrix singular).
Eigen::Matrix3Xd unitSphere(int n) {
    Eigen::Matrix3Xd points(3, n);
    const double golden = M_PI * (3.0 - std::sqrt(5.0));
    for (int i = 0; i < n; ++i) {
        const double zc = 1.0 - 2.0 * (i + 0.5) / n;
        const double r = std::sqrt(1.0 - zc * zc);
        points.col(i) << r * std::cos(golden * i), r * std::sin(golden * i), zc;
    }
    return points;
}

// Points on the ellipsoid ((p - centre) / radii) rotated by `rotation`, then shifted.
Cloud ellipsoidCloud(int n, const Eigen::Vector3d& centre, const Eigen::Vector3d& radii,
                     const Eigen::Matrix3d& rotation = Eigen::Matrix3d::Identity()) {
    const Eigen::Matrix3Xd onSphere = unitSphere(n);
    const Eigen::Matrix3Xd points = (rotation * radii.asDiagonal() * onSphere).colwise() + centre;
    return {points.row(0).transpose(), points.row(1).transpose(), points.row(2).transpose()};
}

std::vector<double> toStd(const Eigen::VectorXd& v) { return {v.data(), v.data() + v.size()}; }

void verifyDefaults(const MagCalib& calib) {
    for (int i = 0; i < 9; ++i) QCOMPARE(calib.correction[i], (i % 4 == 0) ? 1.0 : 0.0);
    for (int k = 0; k < 3; ++k) QVERIFY(calib.scale[k] == 1.0 && calib.offset[k] == 0.0);
}

// The correction is diagonal, with the scale on the diagonal.
void verifyDiagonalCorrection(const MagCalib& calib) {
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            QCOMPARE(calib.correction[row * 3 + col], row == col ? calib.scale[row] : 0.0);
        }
    }
}

// Largest | |(p - offset) * scale| - field | over the cloud.
double sphereDeviation(const MagCalib& calib, const Cloud& cloud, double field = 1.0) {
    double worst = 0.0;
    for (Eigen::Index i = 0; i < cloud.x.size(); ++i) {
        const Eigen::Vector3d corrected((cloud.x(i) - calib.offset[0]) * calib.scale[0],
                                        (cloud.y(i) - calib.offset[1]) * calib.scale[1],
                                        (cloud.z(i) - calib.offset[2]) * calib.scale[2]);
        worst = std::max(worst, std::abs(corrected.norm() - field));
    }
    return worst;
}

}  // namespace

Q_DECLARE_METATYPE(Eigen::Vector3d)

class TestMagCalib : public QObject {
    Q_OBJECT

private slots:
    // Six unknowns: six samples already fit exactly. The field strength scales the result.
    void recoversAxisAlignedEllipsoid_data() {
        QTest::addColumn<Eigen::Vector3d>("centre");
        QTest::addColumn<Eigen::Vector3d>("radii");
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("field");
        QTest::newRow("origin outside")
            << Eigen::Vector3d(3.0, -2.5, 1.75) << Eigen::Vector3d(1.1, 1.6, 0.8) << 500 << 1.0;
        QTest::newRow("raw counts") << Eigen::Vector3d(12.0, -7.0, 30.0)
                                    << Eigen::Vector3d(40.0, 25.0, 55.0) << 1000 << 1.0;
        QTest::newRow("six samples")
            << Eigen::Vector3d(-2.0, 0.5, 1.0) << Eigen::Vector3d(3.0, 2.0, 2.5) << 6 << 1.0;
        QTest::newRow("earth field")
            << Eigen::Vector3d(1, 2, 3) << Eigen::Vector3d(4, 5, 6) << 300 << 48.0;
    }

    void recoversAxisAlignedEllipsoid() {
        QFETCH(Eigen::Vector3d, centre);
        QFETCH(Eigen::Vector3d, radii);
        QFETCH(int, count);
        QFETCH(double, field);
        Cloud cloud = ellipsoidCloud(count, centre, radii);
        MagCalib calib;
        QVERIFY(calib.ellipsoidCalibration(cloud.x, cloud.y, cloud.z, field));
        for (int k = 0; k < 3; ++k) {
            QVERIFY2(std::abs(calib.offset[k] - centre(k)) < 1e-9, qPrintable(QString::number(k)));
            QVERIFY2(std::abs(calib.scale[k] * radii(k) / field - 1.0) < 1e-9,
                     qPrintable(QString::number(k)));
        }
        verifyDiagonalCorrection(calib);
        QVERIFY(sphereDeviation(calib, cloud, field) < 1e-9 * field);

        // The fit alone reports centre and radii with identity axes and stores nothing.
        Eigen::Vector3d fitCentre;
        Eigen::VectorXd fitRadii;
        Eigen::MatrixXd evecs = Eigen::MatrixXd::Zero(5, 5);
        MagCalib fitOnly;
        fitOnly.ellipsoidFit(cloud.x, cloud.y, cloud.z, &fitCentre, &fitRadii, &evecs);
        QVERIFY((fitCentre - centre).norm() < 1e-9);
        QVERIFY((fitRadii - radii).norm() < 1e-9);
        QVERIFY(evecs == Eigen::MatrixXd::Identity(3, 3));
        verifyDefaults(fitOnly);
    }

    // Fewer than six samples on any axis: the call fails and earlier results stay, through
    // either overload.
    void fewerThanSixSamplesFailAndKeepResults_data() {
        QTest::addColumn<int>("shortAxis");
        QTest::newRow("x") << 0;
        QTest::newRow("z") << 2;
    }

    void fewerThanSixSamplesFailAndKeepResults() {
        QFETCH(int, shortAxis);
        Cloud good = ellipsoidCloud(6, Eigen::Vector3d(1, 2, 3), Eigen::Vector3d(4, 5, 6));
        Cloud bad = good;
        Eigen::VectorXd* axes[] = {&bad.x, &bad.y, &bad.z};
        axes[shortAxis]->conservativeResize(5);

        MagCalib fresh;
        QVERIFY(!fresh.ellipsoidCalibration(bad.x, bad.y, bad.z, 1.0));
        verifyDefaults(fresh);

        MagCalib used;
        QVERIFY(used.ellipsoidCalibration(good.x, good.y, good.z, 1.0));
        const MagCalib before = used;
        QVERIFY(!used.ellipsoidCalibration(bad.x, bad.y, bad.z, 1.0));
        std::vector<double> x = toStd(bad.x), y = toStd(bad.y), z = toStd(bad.z);
        QVERIFY(!used.ellipsoidCalibration(x, y, z, 1.0));
        QVERIFY(std::equal(std::begin(used.correction), std::end(used.correction),
                           std::begin(before.correction)));
        QVERIFY(std::equal(used.scale, used.scale + 3, before.scale));
        QVERIFY(std::equal(used.offset, used.offset + 3, before.offset));
    }

    // Reference: the same axis-aligned least-squares problem solved independently (QR, no
    // normal equations), turned into centre and radii by completing the squares.
    void rotatedEllipsoidGetsBestAxisAlignedFit() {
        const Eigen::Matrix3d rotation = (Eigen::AngleAxisd(0.5, Eigen::Vector3d::UnitZ()) *
                                          Eigen::AngleAxisd(0.2, Eigen::Vector3d::UnitX()))
                                             .toRotationMatrix();
        Cloud cloud = ellipsoidCloud(800, Eigen::Vector3d(2.0, -1.0, 0.5),
                                     Eigen::Vector3d(3.0, 2.2, 2.5), rotation);
        MagCalib calib;
        QVERIFY(calib.ellipsoidCalibration(cloud.x, cloud.y, cloud.z, 1.0));
        verifyDiagonalCorrection(calib);

        Eigen::MatrixXd d(cloud.x.size(), 6);
        d << cloud.x.array().square(), cloud.y.array().square(), cloud.z.array().square(),
            2 * cloud.x, 2 * cloud.y, 2 * cloud.z;
        const Eigen::VectorXd v =
            d.colPivHouseholderQr().solve(Eigen::VectorXd::Ones(cloud.x.size()));
        const Eigen::Vector3d q = v.head<3>();
        const Eigen::Vector3d lin = v.tail<3>();
        const Eigen::Vector3d expectedCentre = -lin.cwiseQuotient(q);
        const double gam = 1.0 + lin.cwiseProduct(lin).cwiseQuotient(q).sum();
        for (int k = 0; k < 3; ++k) {
            QVERIFY(std::abs(calib.offset[k] - expectedCentre(k)) < 1e-7);
            QVERIFY(std::abs(calib.scale[k] - std::sqrt(q(k) / gam)) < 1e-7);
        }
        // The axis-aligned model cannot follow a rotated cloud onto the sphere.
        QVERIFY(sphereDeviation(calib, cloud) > 0.05);

        // The std::vector overload gives the same numbers.
        MagCalib fromStd;
        std::vector<double> x = toStd(cloud.x), y = toStd(cloud.y), z = toStd(cloud.z);
        QVERIFY(fromStd.ellipsoidCalibration(x, y, z, 1.0));
        QVERIFY(std::equal(fromStd.scale, fromStd.scale + 3, calib.scale));
        QVERIFY(std::equal(fromStd.offset, fromStd.offset + 3, calib.offset));
        QVERIFY(std::equal(fromStd.correction, fromStd.correction + 9, calib.correction));
    }

    // ---- orientation coverage: one of 12 x 12 x 12 cells of 30 degrees per orientation, each
    // cell counted once, reported as the share of cells marked in percent ----

    // Two orientations mark one cell when their angles fall in the same 30 degree bins after
    // wrapping into [0, 360).
    void binsOfTwoOrientations_data() {
        QTest::addColumn<QVector<float>>("a");
        QTest::addColumn<QVector<float>>("b");
        QTest::addColumn<int>("cells");
        const auto row = [](const char* name, QVector<float> a, QVector<float> b, int cells) {
            QTest::newRow(name) << a << b << cells;
        };
        row("360 wraps to bin 0", {360, 0, 0}, {0, 0, 0}, 1);
        row("29.9 still bin 0", {29.9f, 0, 0}, {0, 0, 0}, 1);
        row("second angle wraps", {0, 360, 0}, {0, 10, 0}, 1);
        row("third angle wraps", {0, 0, -1}, {0, 0, 345}, 1);
        row("30 is not bin 0", {30, 0, 0}, {0, 0, 0}, 2);
        // Each angle has its own axis: swapping angles between positions lands elsewhere.
        row("first vs second", {30, 0, 0}, {0, 30, 0}, 2);
        row("first vs third", {30, 0, 0}, {0, 0, 30}, 2);
    }

    void binsOfTwoOrientations() {
        QFETCH(QVector<float>, a);
        QFETCH(QVector<float>, b);
        QFETCH(int, cells);
        OrientCount count;
        count.addOrientation(a[0], a[1], a[2]);
        count.addOrientation(b[0], b[1], b[2]);
        QCOMPARE(count.getPercNotZero(), cells * 100.0f / 1728.0f);
    }

    // The 1728 cells are distinct, and all of them make exactly 100.0 in single precision.
    void everyCellGivesExactlyHundred() {
        OrientCount count;
        QCOMPARE(count.getPercNotZero(), 0.0f);
        float last = 0.0f;
        for (int i = 0; i < 12; ++i) {
            for (int j = 0; j < 12; ++j) {
                for (int k = 0; k < 12; ++k) {
                    count.addOrientation(15.0f + 30.0f * i, 15.0f + 30.0f * j, 15.0f + 30.0f * k);
                    QVERIFY(count.getPercNotZero() > last);
                    last = count.getPercNotZero();
                }
            }
        }
        QVERIFY(count.getPercNotZero() == 100.0f);
    }
};

QTEST_APPLESS_MAIN(TestMagCalib)
#include "tst_magcalib.moc"
