// Which GL settings start-up chooses: from the renderer a probe context names, unless the
// ORYX_GL_RENDERING override says otherwise. What it installs for the running view is checked
// on the main window.
#include <QSurfaceFormat>
#include <QtTest>

#include "RenderSettings.h"
#include "RendererProbe.h"
#include "WidgetTestMain.h"

Q_DECLARE_METATYPE(RenderPath)

namespace {

QString nvidiaRenderer() { return QStringLiteral("NVIDIA Tegra Orin (nvgpu)/integrated"); }
QString llvmpipeRenderer() { return QStringLiteral("llvmpipe (LLVM 15.0.6, 256 bits)"); }

}  // namespace

class TstRenderSettings : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv(kRenderingVariable); }

    void choosesThePath_data() {
        QTest::addColumn<QString>("renderer");
        QTest::addColumn<QString>("overrideText");
        QTest::addColumn<RenderPath>("path");
        const auto soft = RenderPath::Software;
        const auto hard = RenderPath::Hardware;
        // Software renderers, as their drivers name themselves.
        QTest::newRow("llvmpipe") << llvmpipeRenderer() << "" << soft;
        QTest::newRow("softpipe") << "softpipe"
                                  << "" << soft;
        QTest::newRow("classic swrast") << "Software Rasterizer"
                                        << "" << soft;
        QTest::newRow("swrast") << "Mesa swrast"
                                << "" << soft;
        QTest::newRow("SwiftShader") << "SwiftShader Device (Subzero) (0x0000C0DE)"
                                     << "" << soft;
        QTest::newRow("zink on lavapipe") << "zink (llvmpipe (LLVM 15.0.6, 256 bits))"
                                          << "" << soft;
        // GPUs, one of them with "LLVM" in its name.
        QTest::newRow("Tegra") << nvidiaRenderer() << "" << hard;
        QTest::newRow("radeonsi") << "AMD Radeon RX 6600 (navi23, LLVM 15.0.6, DRM 3.49)"
                                  << "" << hard;
        QTest::newRow("no context") << ""
                                    << "" << hard;
        // The override wins both ways, in any letter case and with blanks around it.
        QTest::newRow("software on a GPU") << nvidiaRenderer() << "software" << soft;
        QTest::newRow("hardware on llvmpipe") << llvmpipeRenderer() << "hardware" << hard;
        QTest::newRow("Software, blanks") << nvidiaRenderer() << " Software " << soft;
        QTest::newRow("software, no context") << ""
                                              << "software" << soft;
        // Anything else is ignored: the renderer decides.
        QTest::newRow("gpu on llvmpipe") << llvmpipeRenderer() << "gpu" << soft;
        QTest::newRow("soft on a GPU") << nvidiaRenderer() << "soft" << hard;
        QTest::newRow("two words") << llvmpipeRenderer() << "hardware software" << soft;
    }

    void choosesThePath() {
        QFETCH(QString, renderer);
        QFETCH(QString, overrideText);
        QFETCH(RenderPath, path);
        QCOMPARE(chooseRenderPath(renderer, parseRenderingOverride(overrideText)), path);
    }
};

WIDGET_TEST_MAIN(TstRenderSettings)
#include "tst_rendersettings.moc"
