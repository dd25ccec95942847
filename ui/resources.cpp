#include "resources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE declares the registration functions that rcc generated; the declarations must
// live in the global namespace, as here.
void initOryxResources() {
    static const bool registered = [] {
        Q_INIT_RESOURCE(oryx_ui);
        Q_INIT_RESOURCE(oryx_ui_fonts);
        return true;
    }();
    Q_UNUSED(registered);
}
