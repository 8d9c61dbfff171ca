' Keyboard echo: prints every key typed, until Enter.
' Start it with GO 4000 at the monitor's prompt.
ORG $4000
LOOP:
        RST $10           ' wait for a key, with the cursor; it comes in A
        RST $8            ' print the character in A
        CP 13
        JR NZ,@LOOP
        RET
