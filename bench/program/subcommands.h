#pragma once

#include <span>
#include <string>

namespace vorthmere::bench {

/// Every subcommand takes the arguments behind its name. What was measured goes to standard output, in seconds. A
/// failure throws; no figure is printed then.
using Arguments = std::span<const std::wstring>;

/// time PROGRAM [ARGUMENT...]: starts a program and prints how long it took to its end, which must be exit code 0.
void timeProgram(Arguments arguments);

/// idle: prints "idle" and runs until the end of standard input: what a process takes that does nothing.
void idle(Arguments arguments);

// Figures: the updater's own operations.

/// download URL FILE BYTES: downloadHttpsFile().
void downloadFigure(Arguments arguments);

/// install FOLDER LIST: installWithBackup() of the files that LIST names, one a line, from FOLDER/staging into
/// FOLDER/game, whose files go to FOLDER/backup.
void installFigure(Arguments arguments);

/// inspect FOLDER: inspectExtractedTree() of the folder.
void inspectFigure(Arguments arguments);

/// parse ROUNDS: parses the largest valid file inventories and managed-file lists and prints a line for each kind and
/// number of records: kind, records, bytes, nanoseconds of a parse, nanoseconds of its floor (one pass of memchr from
/// line feed to line feed), separated by tabs. The times are medians over so many rounds.
void parseFigures(Arguments arguments);

// Floors: the same work in the fewest calls of the platform.

/// staging-floor SOURCE TARGET LIST [PREFIX]: what an incremental update does to the files' bytes: digests each file in
/// SOURCE, then brings each to TARGET, whose folders exist, and digests it there. Each line of LIST is a path; with a
/// tab and the name of an object behind it, the file is not copied but fetched from the address PREFIX + name, over one
/// connection. Prints nothing: the whole process is measured, as the updater's is.
void stagingFloor(Arguments arguments);

/// archive-floor PACKAGE FOLDER: what an update from the complete package does to the package's bytes: digests it,
/// lists it, and unpacks it into FOLDER. Prints nothing, as above.
void archiveFloor(Arguments arguments);

/// digest FOLDER LIST: digests each file that LIST names.
void digestFloor(Arguments arguments);

/// copy SOURCE TARGET: copies one file.
void copyFloor(Arguments arguments);

/// download-floor URL FILE: reads the body into one buffer and throws it away, then writes as many bytes to the file,
/// and prints the sum of the two times.
void downloadFloor(Arguments arguments);

/// moves FOLDER LIST: moves each file that LIST names from FOLDER/game to FOLDER/backup and then each from
/// FOLDER/staging to FOLDER/game. All folders exist.
void movesFloor(Arguments arguments);

}  // namespace vorthmere::bench
