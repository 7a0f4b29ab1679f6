#pragma once

/// 1: the full edition of the policy engine; 0: the lite edition, whose command keys are called
/// CPDs. Set by read_edition at start-up; read by the menus, the queries and the reports.
extern int GATEWARDEN_IS;

/// Sets GATEWARDEN_IS from the region header line; a file without one is of the full edition.
void read_edition();
