#include "src/runState.h"

bool gblFlashing = true;
bool gblXMLMode = false;
bool gblDiscMode = false;
bool notDiscovered = false;
int gblForceFlashing = 0;
bool gblForceIllegalFlashing = false;
bool gblisZeroDownTimeEnabled = false;
bool gblDisableZoneFlashing = false;
unsigned int gblEstimatedFlashTime = 900;
unsigned int gblFakeError = 0;
int gblFound = 0;
int gblFlashed = 0;
int gblUpgrades = 0;
int gblDowngrades = 0;
int gblRefresh = 0;
bool gblFlashInterrupt = false;
char XMLTypeValue[OPTION_TEXT_SIZE] = "QBX";
char gblXMLFile[OPTION_TEXT_SIZE] = "";
char gblOverallVersion[OPTION_TEXT_SIZE] = "";
char gblNewVersion[OPTION_TEXT_SIZE] = "";
