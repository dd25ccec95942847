#include "programstates.h"

QString ProgramStates::qstring_attributes[4];
std::atomic<double> ProgramStates::double_attributes[4] = {};
std::atomic<int> ProgramStates::int_attributes[19] = {};
std::atomic<bool> ProgramStates::bool_attributes[4] = {};

ProgramStates::ProgramStates() {}

ProgramStates::~ProgramStates() {}

void ProgramStates::resetStates() {
    for (auto& b : bool_attributes) b = false;
    for (auto& v : int_attributes) v = 0;
    for (auto& d : double_attributes) d = 0.0;
    for (QString& s : qstring_attributes) s.clear();
}

QString& ProgramStates::qstringAttr(int i) { return qstring_attributes[i]; }

void ProgramStates::setBoolAttr(int i, bool value) { bool_attributes[i] = value; }

bool ProgramStates::getBoolAttr(int i) { return bool_attributes[i]; }

void ProgramStates::switchBoolAttr(int i) { bool_attributes[i] = !bool_attributes[i]; }

void ProgramStates::setIntAttr(int i, int value) { int_attributes[i] = value; }

int ProgramStates::getIntAttr(int i) { return int_attributes[i]; }

std::atomic<int>& ProgramStates::intAttr(int i) { return int_attributes[i]; }

void ProgramStates::setDoubleAttr(int i, double value) { double_attributes[i] = value; }

double ProgramStates::getDoubleAttr(int i) { return double_attributes[i]; }

std::atomic<double>& ProgramStates::doubleAttr(int i) { return double_attributes[i]; }
