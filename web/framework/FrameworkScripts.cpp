#include "web/framework/FrameworkScripts.h"

#include "web/framework/TabData.h"
#include "web/server/LWebletScripts.h"

void InstallFrameworkScripts() { LWebletInstallScript("saveItemDialogTab", AJAXSaveTempTabData); }
