// How wide a line edit must be to show a text whole, instead of scrolling it and cutting it at
// an edge.
#pragma once

#include <QStringList>

class QLineEdit;

// The narrowest width at which `field`, in its font and style, shows each of `texts` whole.
int widthShowingWhole(const QLineEdit& field, const QStringList& texts);
