#include "Lanrise.h"

int main(int argc, char** argv)
{
    return CommonMain(argc, argv) ? 0 : -1;
}
