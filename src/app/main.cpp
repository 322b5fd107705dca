// The editor's entry point: start-up, the message loop and shutdown.

#include "shell/Startup.h"

int main(int argc, char** argv) { return tarvel::runEditor(argc, argv); }
