#pragma once

#include "base/options.h"

/// The six queries of the menu: each asks for the parameters that the command line did not give,
/// reads the logs and makes the page. A cancelled dialog ends it without reading anything.
void Q_1(const Options& options);
void Q_2(const Options& options);
void Q_3(const Options& options);
void Q_4(const Options& options);
void Q_5(const Options& options);
void Q_6(const Options& options);

/// 1, after telling the operator, when the installer started the program: there is nothing to
/// query yet. Else 0.
int Q_during_install(bool during_install);
