/* Compiled once for each public header: it needs no other one before it. */
#include HEADER

int usedFromC(void);
int usedFromC(void) {
    return 0;
}
