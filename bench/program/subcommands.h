#pragma once

#include <span>
#include <string>

namespace vorthmere::bench {

/// Every subcommand gets the arguments after its name. Unless it says otherwise, it prints the seconds that it
/// measured. A failure throws, and nothing is printed.
using Arguments = std::span<const std::wstring>;

/// time PROGRAM [ARGUMENT...]: runs a program, which must end with exit code 0, and measures the time to its end.
void timeProgram(Arguments arguments);

/// idle: prints "idle" and waits for the end of standard input, to show the memory of a process that does nothing.
void idle(Arguments arguments);

// The updater's own operations.

/// download URL FILE BYTES: downloadHttpsFile().
void downloadFigure(Arguments arguments);

/// install FOLDER LIST: installWithBackup() of the files that LIST names, one a line. They move from FOLDER/game to
/// FOLDER/backup and from FOLDER/staging to FOLDER/game.
void installFigure(Arguments arguments);

/// inspect FOLDER: inspectExtractedTree() of the folder.
void inspectFigure(Arguments arguments);

/// parse ROUNDS: parses the largest valid inventories and managed-file lists. Prints a line for each kind and number of
/// records, separated by tabs: kind, records, bytes, nanoseconds of a parse, nanoseconds of its floor (one pass of
/// memchr from line feed to line feed). The times are medians of so many rounds.
void parseFigures(Arguments arguments);

// Floors: the same work in the fewest calls of Windows.

/// staging-floor SOURCE TARGET LIST [PREFIX]: the work of an incremental update on the files' bytes. Digests each file
/// in SOURCE, then copies each to TARGET, whose folders exist, and digests it there. Each line of LIST is a path. After
/// a tab may follow the name of an object: then the file is downloaded from the address PREFIX + name instead, over one
/// connection. Prints nothing: the whole process is measured, as the updater's is.
void stagingFloor(Arguments arguments);

/// archive-floor PACKAGE FOLDER: the work of an update from the package on the package's bytes. Digests it, lists it,
/// and unpacks it into FOLDER. Prints nothing, as above.
void archiveFloor(Arguments arguments);

/// digest FOLDER LIST: digests each file that LIST names.
void digestFloor(Arguments arguments);

/// copy SOURCE TARGET: copies one file.
void copyFloor(Arguments arguments);

/// download-floor URL FILE: reads the body into one buffer and discards it, then writes as many bytes to the file.
void downloadFloor(Arguments arguments);

/// moves FOLDER LIST: moves each file that LIST names from FOLDER/game to FOLDER/backup and then each from
/// FOLDER/staging to FOLDER/game. All folders exist.
void movesFloor(Arguments arguments);

}  // namespace vorthmere::bench
