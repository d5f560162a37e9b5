#include "common/setup.h"

DataBase_ *centralDB = nullptr;
TARNEXConfig tarnexConfig{};

int NBOA = 0;
int NBPL = 0;

bool printsRemarks = true;
bool failsOverOddLinks = true;

double COST = 0.0;
