# language: de
@calculator
Funktionalität: Rechnen auf Deutsch
  Dieselben Knöpfe, dasselbe Programm: Schritte in einer anderen Sprache stehen neben den englischen.

  Grundlage:
    Angenommen der Taschenrechner ist offen

  Szenario: Wurzel
    Wenn ich "1 6 Sqrt" eingebe
    Dann zeigt die Anzeige 4

  Szenariogrundriss: Kehrwerte
    Wenn ich "<Zahl> 1/x" eingebe
    Dann zeigt die Anzeige <Kehrwert>

    Beispiele:
      | Zahl | Kehrwert |
      | 4    | 0.25     |
      | 2    | 0.5      |
