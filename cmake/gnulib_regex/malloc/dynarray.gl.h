/* gnulib's makefile would make this one from the other. */
#include <malloc/dynarray.h>
