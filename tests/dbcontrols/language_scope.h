// The application's language for one scope of a data-aware control test.
#pragma once
#include <Kesh.h>

struct Language
{
    explicit Language(bool RightToLeft) { Kesh::Application()->SetBiDiMode(RightToLeft ? Kesh::bdRightToLeft : Kesh::bdLeftToRight); }
    ~Language() { Kesh::Application()->SetBiDiMode(Kesh::bdLeftToRight); }
};
