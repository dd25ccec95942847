#include "fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QStringList>
#include <QWidget>
#include <QtGlobal>

#include "sheets.h"

namespace {

// Application fonts, in the order they are registered: the Roboto weights of the resource
// bundle. The families that the style sheets name are commercial faces the project cannot ship;
// they resolve to these through the substitutions below.
const char* const kFontFiles[] = {
    ":/font/Roboto-Medium.ttf",
    ":/font/Roboto-Bold.ttf",
    ":/font/Roboto-Regular.ttf",
};

// The family that a style sheet's "font-family: <family>;" leaves on a widget. Qt's sheet parser
// reads the name word by word and turns words that are CSS keywords into numbers: "NB Akademie
// Pro Medium" arrives as "NB Akademie Pro 7". Qt is asked rather than the rule copied here.
QString familyAfterSheet(const QString& family) {
    QWidget probe;
    probe.setStyleSheet("font-family: " + family + ";");
    probe.ensurePolished();
    return probe.font().family();
}

// Under the name as written too: QFont parsers of the program's own (cssFont) keep it whole.
void substitute(const QString& family, const QStringList& substitutes) {
    QFont::insertSubstitutions(family, substitutes);
    const QString parsed = familyAfterSheet(family);
    if (parsed != family) {
        QFont::insertSubstitutions(parsed, substitutes);
    }
}

// Qt names Roboto-Medium.ttf's own subfamily "Roboto Medium" besides "Roboto"; a request for it
// matches only the Medium face. "Roboto" follows as the fallback should a font database not list
// the subfamily.
void substituteRoboto() {
    const QStringList medium = {QStringLiteral("Roboto Medium"), QStringLiteral("Roboto")};
    const QStringList regular = {QStringLiteral("Roboto")};
    substitute(sheet::familyRegular, regular);
    substitute(sheet::familyMedium, medium);
    substitute(sheet::familyMonoRegular, regular);
    substitute(sheet::familyMonoMedium, medium);
}

}  // namespace

void loadApplicationFonts() {
    // Registering a file twice would only add a duplicate family to the font database.
    static const bool loaded = [] {
        for (const char* file : kFontFiles) {
            QFontDatabase::addApplicationFont(QString::fromLatin1(file));
        }
        substituteRoboto();
        return true;
    }();
    Q_UNUSED(loaded);
}
