#include "commands/Program.h"

int main(int count, char** values) {
    return keladjust::app::runProgram(count, values);
}
