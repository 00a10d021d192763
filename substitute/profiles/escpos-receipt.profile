# Action profile for a plain receipt printer that understands ESC/POS.
#
# Copy this file to "PRINTER.profile" or "DRIVER.profile" (the printer's or its driver's name, with "_" for each of
# < > : " / \ | ? *) to put it to use; a printer's profile goes before its driver's. Compare the bytes with the
# printer's manual first: they are sent as they stand here.
#
# A line is ACTION = BYTES; an indented line goes on with the action above it. Bytes are written as 0x1B, as "text" or
# by a control character's name (NUL SOH STX ETX EOT ENQ ACK BEL BS HT LF VT FF CR SO SI DLE DC1 DC2 DC3 DC4 NAK SYN ETB
# CAN EM SUB ESC FS GS RS US). Actions: Test Blank Cut Feed Reset FactoryDefaults Calibrate PrintConfiguration. An
# action without a line here is reported as not supported.

Test = ESC "@"                   # initialise
    "Test print" LF
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ" LF
    "0123456789" LF
    ESC "d" 0x04                 # feed four lines, past the cutter
    GS "V" 0x01                  # partial cut

Blank = ESC "d" 0x10             # sixteen empty lines
    GS "V" 0x01

Feed = ESC "d" 0x04

Cut = GS "V" 0x42 NUL            # feed to the cutter, partial cut

Reset = ESC "@"

PrintConfiguration = GS "(A" 0x02 NUL NUL 0x02   # execute test print: the printer's status page
