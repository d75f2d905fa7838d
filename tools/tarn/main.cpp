#include "command_line.h"

int main(int argument_count, char** arguments) {
    return static_cast<int>(tarn::program::RunProgram(argument_count, arguments));
}
