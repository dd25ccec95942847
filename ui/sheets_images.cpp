#include <initializer_list>

#include "palette.h"
#include "sheets.h"

namespace sheet {
namespace {

// An image per button state: `state` is a pseudo-state such as ":hover" (empty for the
// normal look) and `image` a file name under :/images/ without the extension.
struct StateImage {
    const char* state;
    const char* image;
};

QString imageUrl(const char* image) {
    return QStringLiteral("image:url(:/images/") + image + ".png);";
}

// A borderless tool button that is only its picture; the first entry is the normal look.
QString iconButton(std::initializer_list<StateImage> states) {
    auto it = states.begin();
    QString sheet =
        "QToolButton{border:0px solid;color:" + clr::white + ";" + imageUrl(it->image) + "}";
    for (++it; it != states.end(); ++it) {
        sheet += QStringLiteral("QToolButton") + it->state + "{" + imageUrl(it->image) + "}";
    }
    return sheet;
}

}  // namespace

// Checked means paused: the button then offers "play".
QString pauseButton() {
    return iconButton(
        {{"", "pause"}, {":hover", "pause_h"}, {":checked", "play"}, {":checked:hover", "play_h"}});
}

QString stopButton() { return iconButton({{"", "stop"}, {":hover", "stop_h"}}); }

QString refreshButton() { return iconButton({{"", "refresh"}, {":hover", "refresh_h"}}); }

QString gearButton() {
    return iconButton({{"", "gear"}, {":hover", "gear_h"}, {":disabled", "gear_off"}});
}

QString photoButton() {
    return iconButton(
        {{"", "photo"}, {":checked", "photo_h"}, {":hover", "photo_h"}, {":disabled", "photo_u"}});
}

QString videoButton() {
    return iconButton({{"", "video"},
                       {":checked", "video_on"},
                       {":hover", "video_h"},
                       {":checked:hover", "video_on_h"},
                       {":disabled", "video_u"}});
}

QString recButton() {
    return iconButton({{"", "rec"},
                       {":checked", "rec_on"},
                       {":checked:hover", "rec_on_h"},
                       {":hover", "rec_h"},
                       {":disabled", "rec_u"}});
}

QString folderButton() {
    return iconButton({{"", "folder"},
                       {":checked", "folder_h"},
                       {":hover", "folder_h"},
                       {":disabled", "folder_u"}});
}

QString streamButton() {
    return iconButton({{"", "stream"}, {":checked", "stream_h"}, {":hover", "stream_h"}});
}

QString aspectButton() {
    return "QToolButton{border:0px solid;color:" + clr::transparent +
           ";background-color:" + clr::transparent + ";" + imageUrl("aspect") +
           "}QToolButton:checked{" + imageUrl("aspect_hover") + "}QToolButton:hover{" +
           imageUrl("aspect_hover") + "}";
}

// The selector is spelt "Qlabel" on purpose and is kept byte for byte. Qt matches type
// selectors case-sensitively, so these rules select no widget as written.
QString imageLabel() {
    return QStringLiteral(
        "Qlabel{border:0px solid;color: transparent;background-color:transparent;"
        "image:url(%1);}");
}

QString threeImageButton() {
    return "QToolButton{border: 0px solid;color: " + clr::bw_pearl +
           ";image: url(%1);}QToolButton:checked{image: url(%2);}"
           "QToolButton:hover{image: url(%3);}";
}

}  // namespace sheet
