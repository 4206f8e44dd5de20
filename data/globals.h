#pragma once
// The process-wide strings: the only variables the whole program shares.

#include <QString>

extern QString gConnStr;   // the connection profile, an ADO connection string
extern QString gServer;    // server name, for the status bar only
extern QString gDatabase;  // database name, for the status bar only
extern QString gUserName;  // the operator, as typed at login
extern QString gLoginName; // key of the password change

// Where the profile is kept, and what marks that none is.
inline const QString kSettingApp = QStringLiteral("Orvane文献系统");
inline const QString kSettingSection = QStringLiteral("Setting");
inline const QString kSettingKey = QStringLiteral("OrvanePass");
inline const QString kNoProfile = QStringLiteral("NotExsists");
