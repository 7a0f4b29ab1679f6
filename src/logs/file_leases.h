#pragma once

// Who else has a file open, and keeping them out for a while: by the leases of the system, which
// grants one for reading to nobody while there is a writer, and one for writing to nobody while
// anybody else has the file open; who opens the file then waits until the lease is given back, or
// the system takes it back (after 45 seconds, as a rule).

/// How long others are waited for, in milliseconds: where the system tells whether somebody is
/// there, and where it does not.
struct Patience {
    int steps;
    int blind_steps;
};

/// What became of asking for a lease: it is held, somebody has the file open, or the system has no
/// leases for this file (it is somebody else's, or its file system has none).
enum Lease { GRANTED, REFUSED, NOT_KNOWN_HERE };

/// Asks for a lease (F_RDLCK, F_WRLCK) on an open file until the others who have it open are gone.
/// It is given back when the file is closed.
Lease take_lease(int file, int kind, const Patience& patience);

/// Waits until nobody has a file, open here for reading only, open for writing; false when somebody
/// keeps it so.
bool writers_have_gone(int file, const Patience& patience);
