-- What the installer has and wixl does not write. Statements end with a semicolon at the end of a line; $version
-- is filled in.

-- Files on a disk with 8.3 names. A program is replaced by one of a newer version, where wixl would go by dates.
UPDATE `File` SET `Version` = '$version.0', `Language` = '1033' WHERE `File` = 'kemba.exe';
UPDATE `File` SET `Version` = '$version.0', `Language` = '1033', `FileName` = 'KEMBADAL.EXE|kemba-dal.exe'
    WHERE `File` = 'kemba_dal.exe';
UPDATE `File` SET `FileName` = 'ESCPOS.PRO|escpos-receipt.profile' WHERE `File` = 'escpos_receipt.profile';
DELETE FROM `MsiFileHash` WHERE `File_` = 'kemba.exe';
DELETE FROM `MsiFileHash` WHERE `File_` = 'kemba_dal.exe';

-- The program cannot be left out: 16 is msidbFeatureAttributesUIDisallowAbsent.
UPDATE `Feature` SET `Attributes` = 16 WHERE `Feature` = 'Program';

-- The machine's PATH (*), set at installation (=) and taken back at removal (-).
CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL LOCALIZABLE,
    `Value` CHAR(255) LOCALIZABLE, `Component_` CHAR(72) NOT NULL PRIMARY KEY `Environment`);
INSERT INTO `Environment` (`Environment`, `Name`, `Value`, `Component_`)
    VALUES ('Path', '=-*PATH', '[~];[INSTALLFOLDER]', 'Program');
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('RemoveEnvironmentStrings', 3300);
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('WriteEnvironmentStrings', 5200);

-- An upgrade removes the older version within its own transaction, so that a failure brings that back. Which features
-- were chosen has been taken over by then: wixl writes MigrateFeatureStates.
UPDATE `InstallExecuteSequence` SET `Sequence` = 1501 WHERE `Action` = 'RemoveExistingProducts';

-- Who serves the classes for all users: the default value (18: as it is, in the 64-bit view) of a key in HKLM (2).
INSERT INTO `RegLocator` (`Signature_`, `Root`, `Key`, `Type`) VALUES ('LocalServer', 2,
    'Software\Classes\CLSID\{F56F2E65-2620-41A2-84B8-5CE2F149E1D0}\LocalServer32', 18);
INSERT INTO `RegLocator` (`Signature_`, `Root`, `Key`, `Type`) VALUES ('Library', 2,
    'Software\Classes\CLSID\{F56F2E65-2620-41A2-84B8-5CE2F149E1D0}\InprocServer32', 18);
INSERT INTO `AppSearch` (`Property`, `Signature_`) VALUES ('OTHERSERVER', 'LocalServer');
INSERT INTO `AppSearch` (`Property`, `Signature_`) VALUES ('OTHERLIBRARY', 'Library');
INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('AppSearch', 50);

-- An installation, repair or upgrade that would take the classes from another program ends with these words (19).
INSERT INTO `CustomAction` (`Action`, `Type`, `Target`) VALUES ('RefuseOtherServer', 19,
    'Another program serves the classes of the automation server: [OTHERSERVER] [OTHERLIBRARY] - install without the
feature SubstituteServer, or remove that program first.');
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES ('RefuseOtherServer',
    '&SubstituteServer=3 AND (OTHERLIBRARY OR (OTHERSERVER AND NOT OTHERSERVER ~>< "kemba-dal.exe"))', 1100);

-- The server registers itself for the machine, and takes back exactly what it wrote. It refuses what the above does not
-- see. 18 starts an installed file; 1024 is deferred, 2048 for the system, 256 at the undoing of a failed installation,
-- 64 whatever it answers.
INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`)
    VALUES ('RegisterServer', 3090, 'kemba_dal.exe', '/regserver');
INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`)
    VALUES ('UndoRegisterServer', 3410, 'kemba_dal.exe', '/unregserver');
INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`)
    VALUES ('UnregisterServer', 3154, 'kemba_dal.exe', '/unregserver');
INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`)
    VALUES ('UndoUnregisterServer', 3410, 'kemba_dal.exe', '/regserver');
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`)
    VALUES ('UndoUnregisterServer', '&SubstituteServer=2', 3401);
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`)
    VALUES ('UnregisterServer', '&SubstituteServer=2', 3402);
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`)
    VALUES ('UndoRegisterServer', '&SubstituteServer=3', 4001);
INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`)
    VALUES ('RegisterServer', '&SubstituteServer=3', 4002);
INSERT INTO `Error` (`Error`, `Message`) VALUES (1722,
    'The substitute server was not registered: another program serves some of its classes. Install without the feature
SubstituteServer; kemba-dal /regserver, out of the zip, names that program.');
