// What "kemba /a get comment" does, for as many printers as the word says: the same work through the script host.
WScript.Echo("Executing 'Get' command.");
for (var number = 1; number <= WScript.Arguments(0); ++number) {
    var name = "Label " + ("000" + number).slice(-4);
    var printer = new ActiveXObject("Kemba.DriverAutomation");
    printer.PutPrinterName(name);
    var comment;
    comment = printer.GetComment();
    WScript.Echo(name + ": " + comment);
}
WScript.Echo("Finished processing command.");
