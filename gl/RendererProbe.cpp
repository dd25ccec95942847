#include "RendererProbe.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QSurfaceFormat>
#include <cstdio>

QString probeGlRenderer() {
    // Samples would only narrow the configurations the surface can be made with; the renderer
    // is the same without them.
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(0);
    QOffscreenSurface surface;
    surface.setFormat(format);
    surface.create();
    QOpenGLContext context;
    context.setFormat(format);
    if (!surface.isValid() || !context.create() || !context.makeCurrent(&surface)) return {};
    const auto* renderer =
        reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
    const QString name = renderer != nullptr ? QString::fromLatin1(renderer) : QString();
    context.doneCurrent();
    return name;
}

void installRenderSettings(const RenderSettings& settings) {
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(settings.samples);
    QSurfaceFormat::setDefaultFormat(format);
    RenderSettings::setActive(settings);
}

RenderSettings setUpGlRendering(QString (*probe)()) {
    const QString text = qEnvironmentVariable(kRenderingVariable);
    const RenderingOverride override = parseRenderingOverride(text);
    if (override == RenderingOverride::Invalid) {
        std::fprintf(stderr, "%s=\"%s\" is neither \"software\" nor \"hardware\"; ignored\n",
                     kRenderingVariable, text.toLocal8Bit().constData());
    }
    // A valid override makes the probe's answer moot: start-up is spared making a context.
    const bool decided =
        override == RenderingOverride::Software || override == RenderingOverride::Hardware;
    const QString renderer = decided ? QString() : probe();
    const RenderSettings settings = RenderSettings::forPath(chooseRenderPath(renderer, override));
    installRenderSettings(settings);
    return settings;
}
