// SPDX-License-Identifier: MIT
#pragma once

/**
 * Stands between a program and its C library, and spoils chosen calls on what lies below a folder.
 *
 * A test links the library, or preloads it into a program that it starts. There the environment
 * tells what to do: FAULT_SHIM_FOLDER, FAULT_SHIM_KIND (open, read, stat, list), FAULT_SHIM_N,
 * FAULT_SHIM_FAULT (the name of an error, "end" or "short"), FAULT_SHIM_DELAY (milliseconds, of each
 * call of the kind), and FAULT_SHIM_REPORT, a file that gets the path of the call that was spoiled.
 */
namespace FaultShim
{
enum Kind {
    Open, // of files and of folders
    Read,
    Stat, // also of links, and the resolving of a path
    List // one entry of a folder
};
constexpr int kindCount = 4;

/** What happens to the call instead of an error: a value below zero, errors are above. */
constexpr int none = 0;
constexpr int endOfData = -1;
/** A read gets half of what it asked for, and the next one goes on from there. */
constexpr int shortRead = -2;

/** Called before each call on what lies below the folder, with the number of the call, from 1. */
using Hook = void (*)(Kind kind, const char *path, long number, void *context);

/** Ends all that has been set, sets all counters to zero, and watches what lies below the folder. */
void watch(const char *folder);
/** Spoils the n-th call of that kind from now on; counts from 1. */
void arm(Kind kind, long n, int fault);
void delay(Kind kind, int milliseconds);
void setHook(Hook hook, void *context);

/** Calls of that kind since arm() or watch(). */
long calls(Kind kind);
/** Openings for writing, removals and renamings since watch(). */
long writes();
/** The path of the call that was spoiled since arm(); empty when none was. */
const char *spoiledPath();
} // namespace FaultShim
