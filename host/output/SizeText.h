/* Sizes as people read them. */
#ifndef SIZETEXT_H
#define SIZETEXT_H

#include <string>

/** At most one decimal and the largest unit that fits, as lsblk(8) does: "300M", "1.5G". */
std::string sizeText(unsigned long long bytes);

#endif
