// The veldris program.
#include <veldris/commands/Commands.h>

int main(int argumentCount, char** arguments) {
    return veldris::runProgram(argumentCount, arguments);
}
