// Paints the example's picture anew: paintPicture landscape.png

#include "examples/blur/Landscape.h"
#include "examples/common/Failure.h"

using namespace examples;

int main(int argumentCount, char **arguments) {
  setProgramName("paintPicture");
  if (argumentCount != 2)
    fail("give one argument, the PNG file to write");
  writePicture(paintLandscape(480, 300), arguments[1]);
  return 0;
}
