// The terminal: the picture drawn in place, keys taken as they are typed.
#pragma once

#include "picture.h"

/// Whether standard output is a terminal that a picture can be drawn on.
bool isTerminal();

/// @return what is wrong, empty when nothing
QString openScreen();

/// Gives the terminal back as it was.
void closeScreen();

ScreenSize screenSize();

/// The next key typed, a character or a SpecialKey; KEY_CODE_NONE when none waits. Never waits.
int takeKey();

void draw(const QVector<PictureLine>& lines);
