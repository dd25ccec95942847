#ifndef ORYX_UI_FONTS_H
#define ORYX_UI_FONTS_H

// Registers the fonts of the resource bundle with Qt and points the families that the style
// sheets name at them. Safe to call any number of times; Style's constructor calls it, so every
// window has its fonts before it is first styled.
//
// The sheets name the NB Akademie families, commercial fonts that the project does not ship.
// Through Qt's font substitution they resolve to the bundled Roboto: the Medium families to
// Roboto's Medium face, the others to Roboto, whose Regular and Bold faces the sheets' weights
// then pick. So the interface is set in one face on every machine instead of whatever default
// font the machine has.
void loadApplicationFonts();

#endif  // ORYX_UI_FONTS_H
