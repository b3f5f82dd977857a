#include <Kesh.h>
int main(int argc, char** argv) { Kesh::TQxApplication app(argc, argv); return 0; }
