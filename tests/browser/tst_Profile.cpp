#include "tests/support/TestSupport.h"
int main(){}
