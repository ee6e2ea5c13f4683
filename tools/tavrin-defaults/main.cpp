#include "Commands.h"

int main(int argc, char** argv) {
  using namespace tavrin::defaultstool;
  std::string mistake;
  const auto request = requestFromArguments({argv + 1, argv + argc}, mistake);
  if (request) return perform(*request);
  complain(mistake);
  return 2;
}
