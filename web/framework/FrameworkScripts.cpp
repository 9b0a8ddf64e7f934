#include "web/framework/FrameworkScripts.h"

#include "web/framework/RunPage.h"
#include "web/framework/TabData.h"
#include "web/framework/UploadProgress.h"
#include "web/server/LWebletScripts.h"

void InstallFrameworkScripts() {
    LWebletInstallScript("uploadProgress", WLWebPageRun<LWebUploadProgressAJAX>);
    LWebletInstallScript("saveItemDialogTab", AJAXSaveTempTabData);
    LWebletInstallPostScript("saveItemDialogTab", ReceiveTempTabData);
}
