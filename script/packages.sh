# Debian 12 packages, by what needs them. Sourced by script/setup.

# To build.
build_packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-svg-dev
  libtesseract-dev libleptonica-dev
  libzxing-dev
  libxcb1-dev libxcb-cursor-dev libxcb-shm0-dev libxcb-randr0-dev libxcb-xfixes0-dev
  libxcb-xinput-dev libxcb-xtest0-dev
  libicu-dev nlohmann-json3-dev
  libcairo2-dev libfontconfig-dev
  libsystemd-dev
  libcanberra-dev libspeechd-dev
  libgtest-dev libgmock-dev libbenchmark-dev
)

# To run: recognition data for English, fonts for the self-test and for the symbols of shortcuts, a sound server's
# driver, and a speech server.
run_packages=(
  tesseract-ocr-eng fonts-liberation fonts-dejavu-core libcanberra-pulse
  speech-dispatcher speech-dispatcher-espeak-ng
)

# To test, and for script/run where there is no display.
test_packages=(
  xvfb openbox picom xdotool xclip dbus xterm x11-utils x11-xserver-utils imagemagick
  pulseaudio pulseaudio-utils espeak-ng xfce4-clipman trayer python3
  desktop-file-utils appstream man-db
)

# To make and try the Debian package: script/package.
packaging_packages=(dpkg-dev file debootstrap)

# To keep the house style: script/format and script/tidy.
style_packages=(clang-format clang-tidy)

# Recognition data for the other languages of the settings window: script/setup --all-languages.
language_packages=(
  tesseract-ocr-fra tesseract-ocr-ita tesseract-ocr-deu tesseract-ocr-spa tesseract-ocr-por
  tesseract-ocr-chi-sim tesseract-ocr-chi-tra tesseract-ocr-jpn tesseract-ocr-kor
  tesseract-ocr-rus tesseract-ocr-ukr
)

# To make the corpora of Benchmarks/corpus and to compare with other programs: Benchmarks/measure,
# Benchmarks/compare-pipeline and Benchmarks/measure-session.
benchmark_packages=(
  python3 python3-pil python3-numpy
  chromium python3-gi python3-gi-cairo gir1.2-pango-1.0 python3-pyqt6
  zint maim slop
  tesseract-ocr tesseract-ocr-eng zbar-tools
  fonts-dejavu-core fonts-liberation fonts-noto-core fonts-noto-mono fonts-roboto fonts-cantarell fonts-open-sans
  fonts-lato fonts-inter fonts-hack fonts-firacode fonts-jetbrains-mono
  fonts-noto-cjk fonts-ipafont-gothic fonts-nanum fonts-wqy-microhei
  fortunes fortunes-de perl-modules-5.36 libpython3.11-stdlib libstdc++-12-dev linux-libc-dev cmake-data
  gnome-user-docs debian-reference-zh-tw nautilus-data libgtk-3-common adwaita-icon-theme
  "${language_packages[@]}"
)

# More fonts, to train the glyph classifier on, beside what the corpora need: Benchmarks/glyphs/train.
glyph_packages=(
  fonts-inconsolata fonts-anonymous-pro fonts-go fonts-freefont-ttf fonts-crosextra-carlito fonts-crosextra-caladea
  fonts-mononoki fonts-linuxlibertine fonts-urw-base35 fonts-fantasque-sans fonts-paratype fonts-agave fonts-terminus
  fonts-texgyre fonts-sil-charis fonts-monoid fonts-noto-mono fonts-play fonts-mplus fonts-oxygen fonts-lmodern
  libopenblas0-pthread
)

# To feed arbitrary images to the recognition code: script/fuzz.
fuzz_packages=(clang libclang-rt-14-dev libomp-dev python3 python3-pil python3-numpy zint fonts-dejavu-core)
