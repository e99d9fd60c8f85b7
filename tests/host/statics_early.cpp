#include "tests/host/statics.h"

Kelp::Scene readBeforeMain = Kelp::Scene::fromText("A before { x = 1 + List(2, \"text\", b.c); }");
