/* The question before a change. */
#ifndef CONFIRMATION_H
#define CONFIRMATION_H

#include <string>

#include "Arguments.h"

/** Whether neither --yes nor --dry-run answers for the user. */
bool needsQuestion(const Arguments& arguments);

/** @throw UsageError when a question would have to be asked and there is no terminal to ask on. */
void requireAnswerable(const Arguments& arguments);

/**
 * Asks on the terminal; without asking it is a yes where --yes or --dry-run was given. Only "y" and
 * "yes" stand for a yes.
 */
bool confirmed(const std::string& question, const Arguments& arguments);

#endif
