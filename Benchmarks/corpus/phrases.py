"""Made-up text as user interfaces and terminals show it. The halves draw on different words."""

from passages import TRAINING

LABELS = (
    "File|Edit|View|Insert|Format|Tools|Window|Help|Open…|Save As…|Save All|Close Tab|New Window|Print…|"
    "Undo|Redo|Cut|Copy|Paste|Select All|Find Next|Replace…|Zoom In|Zoom Out|Full Screen|Preferences|"
    "About|Quit|Cancel|OK|Apply|Don't Save|Delete|Rename|Move to Trash|Empty Trash|Properties|Sign in|"
    "Log out|Forgot password?|Continue|Back|Next|Finish|Skip|Retry|Ignore|Yes|No|Browse…|Download|Upload|"
    "Share|Send|Reply|Reply All|Forward|Archive|Mark as read|Inbox (12)|Drafts|Sent|Spam|Settings|"
    "Accounts|Privacy & Security|Notifications|Wi-Fi|Bluetooth|Sound|Displays|Keyboard|Mouse & Touchpad|"
    "Printers|Power|Date & Time|Language|Users|Appearance|Dark mode|Night Light|Battery: 87%|Connected|"
    "Disconnected|Not available|Loading…|Searching|No results|Show more|Show all|Learn more|Add to cart|"
    "Checkout|Subtotal|Total|Quantity|In stock|Sold out|Free shipping|Order now|Buy now|Sort by: Price|"
    "Filter|Reset|Clear all|Name|Size|Type|Modified|Kind|Owner|Status|Priority|Assignee|Due date|To do|"
    "In progress|Done|Blocked|Open in Terminal|Run|Debug|Build|Test|Deploy|Commit|Push|Pull|Merge|Rebase|"
    "Branch: main|Terminal|Output|Problems|Ln 12, Col 8|Spaces: 2|UTF-8|Home|Documents|Downloads|Music|"
    "Pictures|Videos|Trash|Recent|Starred|Other Locations|Username|Password|E-mail address|First name|"
    "Last name|Street|City|Postal code|Country|Phone|Submit|I agree to the terms|Remember me|"
    "Update available|Restart now|Later|Install|Remove|Enable|Disable|Allow|Deny|Always on top|Minimise|"
    "Maximise|Resize|Volume|Mute|Play|Pause|Stop|Previous|Shuffle|Repeat|Subscribe|Follow|Like|Comment|"
    "Report|Mon|Tue|Wed|Thu|Fri|Sat|Sun|January|February|March|Today|Tomorrow|All day|Invite|Join|Leave|"
    "Raise hand|Chat|Participants|Record|Leave meeting|Ctrl+C|Alt+F4|Ctrl+Shift+T|F11|Esc"
).split("|")

GERMAN_LABELS = (
    "Datei|Bearbeiten|Ansicht|Einfügen|Fenster|Hilfe|Öffnen …|Speichern unter …|Schließen|Drucken …|"
    "Rückgängig|Wiederholen|Ausschneiden|Kopieren|Alles auswählen|Suchen und Ersetzen|Vergrößern|"
    "Verkleinern|Vollbild|Einstellungen|Über dieses Programm|Beenden|Abbrechen|Übernehmen|"
    "Nicht speichern|Löschen|Umbenennen|In den Papierkorb verschieben|Eigenschaften|Anmelden|Abmelden|"
    "Passwort vergessen?|Weiter|Zurück|Fertigstellen|Überspringen|Durchsuchen …|Herunterladen|Hochladen|"
    "Teilen|Antworten|Allen antworten|Weiterleiten|Entwürfe|Gesendet|Datenschutz und Sicherheit|"
    "Benachrichtigungen|Lautstärke|Bildschirme|Tastatur|Drucker|Energie|Datum und Uhrzeit|Sprache|"
    "Benutzer|Erscheinungsbild|Verbunden|Nicht verfügbar|Wird geladen …|Keine Ergebnisse|Mehr anzeigen|"
    "Warenkorb|Zur Kasse|Zwischensumme|Gesamtbetrag|Menge|Auf Lager|Ausverkauft|Größe|Geändert|Fällig am|"
    "Persönlicher Ordner|Dokumente|Bilder|Zuletzt verwendet|Straße und Hausnummer|Postleitzahl|Vorname|"
    "Änderungen übernehmen|Jetzt neu starten|Später|Hinzufügen|Entfernen|Montag|Dienstag|März|Schlüssel|"
    "Grüße"
).split("|")

WORDS = (
    "cache|buffer|index|report|invoice|summary|module|worker|socket|parser|token|stream|config|render|"
    "layout|color|screen|window|thread|handle|offset|length|matrix|vector|sample|filter|region|border|"
    "margin|policy|schema|query|server|client|backup|archive|notes|budget|holiday|photo|avatar|banner|"
    "session|signal|device|driver|kernel|memory|result|status|message|header|footer|widget|dialog|button|"
    "toolbar|locale|digest|cursor|branch|remote"
).split("|")
EXTENSIONS = (
    "txt pdf png jpeg md json yaml tar.gz docx xlsx cpp hpp py rs ts tsx svg mp4 zip deb log csv toml".split()
)
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def _of_half(words, half):
    return words[0::2] if half == TRAINING else words[1::2]


class Phrases:
    """Makes phrases with a stream of random numbers."""

    def __init__(self, random, half):
        self.random = random
        self.half = half

    def label(self):
        return self.random.choice(_of_half(LABELS, self.half))

    def german_label(self):
        return self.random.choice(_of_half(GERMAN_LABELS, self.half))

    def word(self):
        return self.random.choice(_of_half(WORDS, self.half))

    def identifier(self):
        a, b = self.word(), self.word()
        return self.random.choice(
            [
                f"{a}_{b}",
                f"_{a}",
                f"{a}{b.title()}",
                f"__{a}__",
                f"{a.upper()}_{b.upper()}",
                f"{a}{self.random.randrange(1, 65)}",
                f"{a}-{b}",
                f"i18n.{a}",
                f"v8/{a}",
                f"x86_{a}",
            ]
        )

    def file_name(self):
        r = self.random
        stem = r.choice(
            [
                self.word(),
                self.identifier(),
                f"{self.word()}-{self.version()}",
                f"IMG_{r.randrange(1000, 9999)}",
                f"2024-{r.randrange(1, 13):02}-{r.randrange(1, 29):02}_{self.word()}",
                f"{self.word()} ({r.randrange(1, 9)})",
            ]
        )
        return f"{stem}.{r.choice(EXTENSIONS)}"

    def path(self):
        root = self.random.choice(["/usr/lib/", "~/", "./", "../", "/etc/", "src/v8/", "C:\\", ""])
        return root + self.random.choice(
            [f"{self.word()}/{self.file_name()}", f"{self.word()}/{self.word()}/"]
        )

    def version(self):
        r = self.random
        return r.choice(
            [
                f"{r.randrange(20)}.{r.randrange(20)}",
                f"v{r.randrange(9)}.{r.randrange(30)}.{r.randrange(10)}",
                f"{r.randrange(1, 130)}.0.{r.randrange(9999)}.{r.randrange(99)}",
                f"{r.randrange(9)}.{r.randrange(12)}-{r.randrange(9)}+deb12u{r.randrange(1, 5)}",
            ]
        )

    def time(self):
        r = self.random
        hour, minute = r.randrange(24), r.randrange(60)
        return r.choice(
            [
                f"{hour}:{minute:02}",
                f"{hour:02}:{minute:02}:{r.randrange(60):02}",
                f"{hour % 12 + 1}:{minute:02} {r.choice(['AM', 'PM'])}",
                f"{r.randrange(1, 59)} min ago",
                f"{r.choice(MONTHS)} {r.randrange(1, 29)}, 20{r.randrange(10, 30)}",
                f"20{r.randrange(10, 30)}-{r.randrange(1, 13):02}-{r.randrange(1, 29):02}",
            ]
        )

    def amount(self):
        r = self.random
        n = r.randrange(1, 5000)
        return r.choice(
            [
                f"${n}.{r.randrange(100):02}",
                f"€{n:,}.00",
                f"£{n % 100}.99",
                f"{n % 100},{r.randrange(100):02} €",
                f"{n % 101}%",
                f"{n / 10:.1f} MB",
                f"{n} items",
                f"+{n % 50}",
                f"-{n % 90}.5",
                f"1{r.randrange(100, 999)} KB",
                f"#{n}",
                f"{n % 12}/{n % 12 + 3}",
                f"{n % 1000}px",
            ]
        )

    def contact(self):
        r = self.random
        return r.choice(
            [
                f"{self.word()}.{self.word()}@example.org",
                f"https://www.example.com/{self.word()}?id={r.randrange(999)}",
                f"+49 30 {r.randrange(100000, 999999)}",
                f"192.168.{r.randrange(256)}.{r.randrange(256)}:{r.randrange(1000, 9999)}",
                f"@{self.identifier().replace('/', '_')}",
                f"{r.getrandbits(40):010x}",
            ]
        )

    def datum(self):
        """One word or number, as the cell of a table or the whole of a tight selection."""
        return self.random.choice(
            [
                self.label,
                self.label,
                self.label,
                self.word,
                self.identifier,
                self.file_name,
                self.path,
                self.version,
                self.time,
                self.time,
                self.amount,
                self.amount,
                self.contact,
            ]
        )()

    def command_line(self):
        r = self.random
        return r.choice(
            [
                f'$ git commit -m "{self.word()}: {self.label()}"',
                f"$ ls -la {self.path()}",
                f"-rw-r--r-- 1 root root {r.randrange(99999)} {r.choice(MONTHS)} {r.randrange(1, 29)} "
                f"{r.randrange(24):02}:{r.randrange(60):02} {self.file_name()}",
                f"import {{ {self.identifier()} }} from '{self.path()}';",
                f"const {self.word()} = (x) => x?.{self.word()} ?? [];",
                f"if (!{self.word()} && {self.word()}[i] != 0x{r.getrandbits(16):04X}) return -1;",
                f'"{self.word()}": {{"{self.word()}": [{r.randrange(9)}, {r.randrange(99)}], "ok": true}},',
                f"[{self.time()}] ERROR {self.path()}:{r.randrange(999)}: {self.word()} not found",
                f"**{self.word().title()}:** see `{self.identifier()}` and [{self.word()}](docs/{self.word()}.md)",
                f"- [x] {self.label()} (#{r.randrange(999)})",
                f"GET /api/v{r.randrange(1, 9)}/{self.word()}s?id={r.randrange(99)} HTTP/1.1 200",
                f"fn {self.word()}_{self.word()}(&mut self, n: u{r.choice([8, 16, 32, 64])}) -> Option<&str> {{",
                f"SELECT {self.word()}, COUNT(*) FROM {self.word()}s WHERE id >= {r.randrange(999)};",
                f"sudo apt-get install -y lib{self.word()}-dev={self.version()}",
                f"@@ -{r.randrange(99)},7 +{r.randrange(99)},9 @@ {self.identifier()}()",
                f'export {self.word().upper()}_DIR="$HOME/.{self.word()}"',
                f"for (int i = 0; i < {self.word()}.size(); ++i) {{",
            ]
        )
