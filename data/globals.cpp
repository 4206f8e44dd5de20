#include "data/globals.h"

QString gConnStr;
QString gServer;
QString gDatabase;
QString gUserName;
QString gLoginName;

const QString kSettingApp = QStringLiteral("Orvane文献系统");
const QString kSettingSection = QStringLiteral("Setting");
const QString kSettingKey = QStringLiteral("OrvanePass");
const QString kNoProfile = QStringLiteral("NotExsists");
