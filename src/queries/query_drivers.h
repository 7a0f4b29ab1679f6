#pragma once

/// The six queries of the menu: each asks for the parameters that the command line did not give,
/// reads the logs and makes the page. A cancelled dialog ends it without reading anything.
void Q_1();
void Q_2();
void Q_3();
void Q_4();
void Q_5();
void Q_6();

/// 1, after telling the operator, when the installer started the program: there is nothing to
/// query yet. Else 0.
int Q_during_install();
