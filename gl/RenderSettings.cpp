#include "RenderSettings.h"

#include <QStringList>

namespace {

RenderSettings activeSettings;

}  // namespace

RenderSettings RenderSettings::forPath(RenderPath path) {
    RenderSettings settings;
    if (path == RenderPath::Software) {
        settings.path = RenderPath::Software;
        // Without samples the lines are aliased but keep their width and colour, and a frame
        // costs a sixteenth of the rasterising.
        settings.samples = 0;
        settings.redrawOnlyOnChange = true;
        settings.nativeWindow = true;
    }
    return settings;
}

const RenderSettings& RenderSettings::active() { return activeSettings; }

void RenderSettings::setActive(const RenderSettings& settings) { activeSettings = settings; }

RenderingOverride parseRenderingOverride(const QString& text) {
    const QString word = text.trimmed().toLower();
    if (word.isEmpty()) return RenderingOverride::None;
    if (word == QLatin1String("software")) return RenderingOverride::Software;
    if (word == QLatin1String("hardware")) return RenderingOverride::Hardware;
    return RenderingOverride::Invalid;
}

bool isSoftwareRenderer(const QString& glRenderer) {
    // Mesa's llvmpipe and softpipe, its classic swrast (whose renderer string is "Software
    // Rasterizer"), and Google's SwiftShader; zink over lavapipe names llvmpipe too.
    static const QStringList names = {
        QStringLiteral("llvmpipe"), QStringLiteral("softpipe"), QStringLiteral("swrast"),
        QStringLiteral("software rasterizer"), QStringLiteral("swiftshader")};
    for (const QString& name : names) {
        if (glRenderer.contains(name, Qt::CaseInsensitive)) return true;
    }
    return false;
}

RenderPath chooseRenderPath(const QString& glRenderer, RenderingOverride override) {
    switch (override) {
        case RenderingOverride::Software:
            return RenderPath::Software;
        case RenderingOverride::Hardware:
            return RenderPath::Hardware;
        case RenderingOverride::None:
        case RenderingOverride::Invalid:
            break;
    }
    return isSoftwareRenderer(glRenderer) ? RenderPath::Software : RenderPath::Hardware;
}
