#include "CssValues.h"

#include <QHash>
#include <QStringList>
#include <QVector>

namespace {

int weightOf(const QString& name) {
    static const QHash<QString, int> weights = {
        {"thin", QFont::Thin},         {"extralight", QFont::ExtraLight},
        {"light", QFont::Light},       {"regular", QFont::Normal},
        {"normal", QFont::Normal},     {"medium", QFont::Medium},
        {"demibold", QFont::DemiBold}, {"semibold", QFont::DemiBold},
        {"bold", QFont::Bold},         {"extrabold", QFont::ExtraBold},
        {"black", QFont::Black},
    };
    // CSS weights 100, 200, ... 900, in QFont's scale.
    static const int byHundreds[] = {QFont::Thin,   QFont::ExtraLight, QFont::Light,
                                     QFont::Normal, QFont::Medium,     QFont::DemiBold,
                                     QFont::Bold,   QFont::ExtraBold,  QFont::Black};
    bool isNumber = false;
    const int numeric = name.toInt(&isNumber);
    if (isNumber) {
        return byHundreds[qBound(1, (numeric + 50) / 100, 9) - 1];
    }
    return weights.value(name.toLower(), -1);
}

void applyProperty(QFont& font, const QString& key, const QString& value) {
    if (key == QLatin1String("font-family")) {
        font.setFamily(value);
    } else if (key == QLatin1String("font-weight")) {
        const int weight = weightOf(value);
        if (weight >= 0) {
            font.setWeight(weight);
        }
    } else if (key == QLatin1String("font-size") && value.endsWith(QLatin1String("pt"))) {
        bool ok = false;
        const double points = value.chopped(2).trimmed().toDouble(&ok);
        if (ok && points > 0.0) {
            font.setPointSizeF(points);
        }
    }
}

// The numbers between the brackets of "rgb(...)"/"rgba(...)", or nothing when the text is not
// of that form.
QVector<int> colourComponents(const QString& css) {
    const QString text = css.trimmed();
    const int open = text.indexOf(QLatin1Char('('));
    const bool functional =
        text.startsWith(QLatin1String("rgb")) && open > 0 && text.endsWith(QLatin1Char(')'));
    if (!functional) {
        return {};
    }
    QVector<int> components;
    const QStringList parts = text.mid(open + 1, text.size() - open - 2).split(QLatin1Char(','));
    for (const QString& part : parts) {
        bool ok = false;
        const int value = part.trimmed().toInt(&ok, 10);
        if (!ok) {
            return {};
        }
        components.append(value);
    }
    return components;
}

}  // namespace

QColor cssColour(const QString& css) {
    const QVector<int> c = colourComponents(css);
    if (c.size() == 3) {
        return QColor(c[0], c[1], c[2]);
    }
    if (c.size() == 4) {
        return QColor(c[0], c[1], c[2], c[3]);
    }
    return QColor(css.trimmed());
}

QFont cssFont(const QString& css) {
    QFont font;
    const QStringList declarations = css.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString& declaration : declarations) {
        const int colon = declaration.indexOf(QLatin1Char(':'));
        if (colon < 0) {
            continue;
        }
        const QString key = declaration.left(colon).trimmed().toLower();
        const QString value = declaration.mid(colon + 1).trimmed();
        applyProperty(font, key, value);
    }
    return font;
}
