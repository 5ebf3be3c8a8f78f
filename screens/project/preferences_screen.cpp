#include "screens/project/preferences_screen.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/menu_options.h"
#include "core/parse.h"
#include "core/preferences.h"
#include "core/session.h"
#include "core/text.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"

namespace vintar {

namespace {

QCheckBox* Check(const char* name, const QString& text, QWidget* parent) {
  auto* box = new QCheckBox(text, parent);
  box->setObjectName(name);
  return box;
}

QRadioButton* Radio(const char* name, const QString& text, QWidget* parent) {
  auto* option = new QRadioButton(text, parent);
  option->setObjectName(name);
  return option;
}

QSpinBox* Spin(const char* name, int low, int high, QWidget* parent) {
  auto* spin = new QSpinBox(parent);
  spin->setObjectName(name);
  spin->setRange(low, high);
  return spin;
}

QDoubleSpinBox* Real(const char* name, double low, double high, int decimals, QWidget* parent) {
  auto* spin = new QDoubleSpinBox(parent);
  spin->setObjectName(name);
  spin->setRange(low, high);
  spin->setDecimals(decimals);
  spin->setSingleStep(decimals > 2 ? 0.01 : 0.1);
  return spin;
}

QComboBox* Choices(const char* name, const std::vector<MenuChoice>& choices, QWidget* parent) {
  auto* combo = new QComboBox(parent);
  combo->setObjectName(name);
  for (const MenuChoice& c : choices) combo->addItem(Q(c.Caption), c.Value);
  return combo;
}

void SelectValue(QComboBox* combo, int value) {
  const int at = combo->findData(value);
  combo->setCurrentIndex(at < 0 ? 0 : at);
}

// A folder or program field with its browse button.
QWidget* PathRow(QLineEdit* edit, bool folder, QWidget* parent) {
  auto* row = new QWidget(parent);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(edit, 1);
  auto* browse = new QToolButton(row);
  browse->setText(QStringLiteral("..."));
  browse->setToolTip(folder ? QObject::tr("Choose a folder") : QObject::tr("Choose a program"));
  layout->addWidget(browse);
  QObject::connect(browse, &QToolButton::clicked, row, [edit, folder, row] {
    const QString chosen = folder ? QFileDialog::getExistingDirectory(row, QObject::tr("Choose a Folder"), edit->text())
                                  : QFileDialog::getOpenFileName(row, QObject::tr("Choose a Program"), edit->text());
    if (!chosen.isEmpty()) edit->setText(chosen);
  });
  return row;
}

QString AyanamsaText(float value) { return QString::number(double(value), 'g', 9); }


}  // namespace

// PreferencesScreen -----------------------------------------------------------

PreferencesScreen::PreferencesScreen(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("PreferencesScreen");
  setWindowTitle(tr("Preferences"));
  Session& s = wb_.session;
  auto* outer = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  outer->addWidget(tabs, 1);

  // General.
  auto* general = new QWidget(tabs);
  auto* generalLayout = new QVBoxLayout(general);
  saveOnExit_ = Check("chkSaveOnExit", tr("Offer to save changes on e&xit"), general);
  sound_ = Check("PutSoundOn", tr("&Sound with messages"), general);
  prompt_ = Check("PutPromptOn", tr("Offer the &notepad when a project opens"), general);
  monthFirst_ = Check("PutMonthFirstOn", tr("&Month before day in dates"), general);
  for (QCheckBox* box : {saveOnExit_, sound_, prompt_, monthFirst_}) generalLayout->addWidget(box);
  auto* keys = new QGroupBox(tr("Keys in the entry screens"), general);
  auto* keysLayout = new QVBoxLayout(keys);
  cuaKeys_ = Radio("KeysCUA", tr("&CUA: Enter presses OK"), keys);
  novaKeys_ = Radio("KeysNova", tr("N&ova: Enter and the arrows move between fields"), keys);
  keysLayout->addWidget(cuaKeys_);
  keysLayout->addWidget(novaKeys_);
  generalLayout->addWidget(keys);
  auto* clock = new QGroupBox(tr("Times"), general);
  auto* clockLayout = new QHBoxLayout(clock);
  ampm_ = Radio("AMPMOn", tr("&12-hour clock (am/pm)"), clock);
  clock24_ = Radio("Clock24", tr("&24-hour clock"), clock);
  clockLayout->addWidget(ampm_);
  clockLayout->addWidget(clock24_);
  generalLayout->addWidget(clock);
  auto* wordForm = new QFormLayout;
  wordProc_ = new QLineEdit(general);
  wordProc_->setObjectName("txtWordProc");
  wordForm->addRow(tr("&Word processor:"), PathRow(wordProc_, false, general));
  useOtherWP_ = Check("chkUseOtherWP", tr("Open the group &reports in this word processor, else in the system's viewer"),
                      general);
  wordForm->addRow(QString(), useOtherWP_);
  generalLayout->addLayout(wordForm);
  generalLayout->addStretch();
  tabs->addTab(general, tr("&General"));

  // Charts.
  auto* charts = new QWidget(tabs);
  auto* chartForm = new QFormLayout(charts);
  houses_ = Choices("cmbHouses", MenuOptionChoices(s, MenuOption::Houses), charts);
  zodiac_ = Choices("cmbZodiac", MenuOptionChoices(s, MenuOption::Zodiac), charts);
  progressions_ = Choices("cmbProgressions", MenuOptionChoices(s, MenuOption::Progressions), charts);
  chartForm->addRow(tr("&Houses:"), houses_);
  auto* userHouse = new QHBoxLayout;
  pointOnCusp_ = new QComboBox(charts);
  pointOnCusp_->setObjectName("cmbPointOnCusp");
  for (int point = 1; point <= kPointCount && size_t(point) < s.vocab.PointName.size(); ++point)
    pointOnCusp_->addItem(Q(s.vocab.PointName[size_t(point)]), point);
  whichCusp_ = Spin("spnWhichCusp", 1, 12, charts);
  userHouse->addWidget(pointOnCusp_, 1);
  userHouse->addWidget(new QLabel(tr("on cusp"), charts));
  userHouse->addWidget(whichCusp_);
  chartForm->addRow(tr("&User houses:"), userHouse);
  chartForm->addRow(tr("&Zodiac:"), zodiac_);
  userAyan_ = new QLineEdit(charts);
  userAyan_->setObjectName("txtUserAyan");
  userAyan_->setToolTip(Q(kAyanamsaPrompt));
  chartForm->addRow(tr("User &ayanamsa (SVP):"), userAyan_);
  chartForm->addRow(tr("&Progressed angles:"), progressions_);
  auto* node = new QHBoxLayout;
  trueNode_ = Radio("TrueNode", tr("&True node"), charts);
  meanNode_ = Radio("MeanNode", tr("M&ean node"), charts);
  node->addWidget(trueNode_);
  node->addWidget(meanNode_);
  node->addStretch();
  chartForm->addRow(tr("Node:"), node);
  tabs->addTab(charts, tr("C&harts"));

  // Places.
  auto* places = new QWidget(tabs);
  auto* placesLayout = new QVBoxLayout(places);
  autoAtlas_ = Check("chkAutoAtlasLookup", tr("Look places up in the &atlas on leaving the place field"), places);
  useACS_ = Check("chkUseACS", tr("Take &time zones from the zone database (else the zone table)"), places);
  illinois_ = Check("chkIllinoisWarning", tr("&Warn of Illinois births under its standard-time law"), places);
  for (QCheckBox* box : {autoAtlas_, useACS_, illinois_}) placesLayout->addWidget(box);
  placesLayout->addStretch();
  tabs->addTab(places, tr("&Places"));

  // Rectification.
  auto* rect = new QWidget(tabs);
  auto* rectForm = new QFormLayout(rect);
  minPeakWidth_ = Spin("spnMinPeakWidth", 1, 60, rect);
  peakSD_ = Real("spnPeakSDFactor", 0.0, 10.0, 2, rect);
  forcePeakSD_ = Real("spnForcePeakSDFactor", 0.0, 10.0, 2, rect);
  maxPeaks_ = Spin("spnMaxPeaks", 1, 60, rect);
  maxGapBars_ = Spin("spnMaxGapBars", 0, 120, rect);
  addCommonBars_ = Spin("spnAddCommonBars", 0, 60, rect);
  dynInterval_ = Real("spnDynInterval", 0.001, 10.0, 3, rect);
  dynStepDays_ = Spin("spnDynStepDays", 1, 3650, rect);
  rectForm->addRow(tr("Smallest peak &width (bars):"), minPeakWidth_);
  rectForm->addRow(tr("Peak &height (standard deviations):"), peakSD_);
  rectForm->addRow(tr("&Forced peak height (standard deviations):"), forcePeakSD_);
  rectForm->addRow(tr("Most &peaks per graph:"), maxPeaks_);
  rectForm->addRow(tr("Largest &gap in a peak (bars):"), maxGapBars_);
  rectForm->addRow(tr("Bars added to &common peaks:"), addCommonBars_);
  rectForm->addRow(tr("&Dynamic interval:"), dynInterval_);
  rectForm->addRow(tr("Dynamic chart &step (days):"), dynStepDays_);
  autoGraphMinWeight_ = Real("spnAutoGraphMinWeight", 0.0, 10000.0, 1, rect);
  autoScoreMode_ = new QComboBox(rect);
  autoScoreMode_->setObjectName("cmbAutoScoreMode");
  autoScoreMode_->addItem(tr("Overall score of the three searches"), 0);
  autoScoreMode_->addItem(tr("Transit ratio, then the overall score"), 1);
  rectForm->addRow(tr("Auto Rectify: graph weight &below which the slower planets are used:"), autoGraphMinWeight_);
  rectForm->addRow(tr("Auto Rectify: rank &candidates by:"), autoScoreMode_);
  tabs->addTab(rect, tr("&Rectification"));

  // Reports.
  auto* reports = new QWidget(tabs);
  auto* reportForm = new QFormLayout(reports);
  userName_ = new QLineEdit(reports);
  userName_->setObjectName("txtUserName");
  userName_->setPlaceholderText(tr("the login name"));
  reportFont_ = new QFontComboBox(reports);
  reportFont_->setObjectName("cmbReportFont");
  reportFont_->setEditable(true);
  reportForm->addRow(tr("\"Generated by\" &name:"), userName_);
  reportForm->addRow(tr("Report &font:"), reportFont_);
  tabs->addTab(reports, tr("Re&ports"));

  // Folders.
  auto* folders = new QWidget(tabs);
  auto* folderForm = new QFormLayout(folders);
  systemData_ = new QLineEdit(folders);
  systemData_->setObjectName("txtSystemDataPath");
  userData_ = new QLineEdit(folders);
  userData_->setObjectName("txtUserDataPath");
  folderForm->addRow(tr("&System data:"), PathRow(systemData_, true, folders));
  folderForm->addRow(tr("&User data:"), PathRow(userData_, true, folders));
  swissEph_ = new QLineEdit(folders);
  swissEph_->setObjectName("txtSwissEphPath");
  folderForm->addRow(tr("&Ephemeris files:"), PathRow(swissEph_, true, folders));
  folderForm->addRow(new QLabel(tr("Changed folders are used from the next start."), folders));
  tabs->addTab(folders, tr("&Folders"));

  // The keys of the symbol font are kept in the preference file for the
  // files shared with older set-ups; the glyphs here are Unicode symbols.
  auto* symbols = new QWidget(tabs);
  auto* symbolForm = new QFormLayout(symbols);
  const Preferences& p = s.prefs;
  auto shown = [symbols](const char* name, const std::string& value) {
    auto* field = new QLineEdit(QPath(value), symbols);
    field->setObjectName(name);
    field->setReadOnly(true);
    return field;
  };
  symbolForm->addRow(tr("Symbol font:"), shown("txtHCTTFont", p.HCTTFont));
  symbolForm->addRow(tr("Uranus glyph code:"), shown("txtUranusGlyph", p.UranusGlyph));
  symbolForm->addRow(tr("Pluto glyph code:"), shown("txtPlutoGlyph", p.PlutoGlyph));
  symbolForm->addRow(tr("Capricorn glyph code:"), shown("txtCapricornGlyph", p.CapricornGlyph));
  auto* note = new QLabel(tr("Charts, strips and reports draw the Unicode astrological symbols in %1; these codes "
                             "belong to the symbol font of older set-ups and are kept as they stand.")
                              .arg(QStringLiteral("DejaVu Sans")),
                          symbols);
  note->setWordWrap(true);
  symbolForm->addRow(note);
  tabs->addTab(symbols, tr("S&ymbols"));

  auto* bottom = new QHBoxLayout;
  auto* save = new QPushButton(tr("Sa&ve Preferences"), this);
  save->setObjectName("btnSavePreferences");
  save->setAutoDefault(false);
  auto* restore = new QPushButton(tr("R&estore Preferences"), this);
  restore->setObjectName("btnRestorePreferences");
  restore->setAutoDefault(false);
  bottom->addWidget(save);
  bottom->addWidget(restore);
  bottom->addStretch();
  bottom->addWidget(OkCancelButtons(this));
  outer->addLayout(bottom);

  connect(save, &QPushButton::clicked, this, &PreferencesScreen::SavePreferencesClicked);
  connect(restore, &QPushButton::clicked, this, &PreferencesScreen::RestorePreferencesClicked);
  // This one is kept at once, not only by "Save Preferences".
  connect(autoAtlas_, &QCheckBox::toggled, this, [this](bool on) {
    Session& session = wb_.session;
    session.prefs.AutoAtlasLookup = on ? kTrue : kFalse;
    PutProfileNumber(session, "Vintar", "AutoAtlasLookup", session.prefs.AutoAtlasLookup);
  });
  connect(useACS_, &QCheckBox::toggled, this, [this](bool on) {
    Session& session = wb_.session;
    session.prefs.UseACS = on ? kTrue : kFalse;
    PutProfileNumber(session, "Vintar", "UseACS", session.prefs.UseACS);
  });
  Load();
}

void PreferencesScreen::Load() {
  const Preferences& p = wb_.session.prefs;
  saveOnExit_->setChecked(p.SaveOnExit != 0);
  sound_->setChecked(p.Sound != 0);
  prompt_->setChecked(p.Prompt != 0);
  monthFirst_->setChecked(p.MonthFirst != 0);
  {
    const QSignalBlocker quiet(autoAtlas_);
    autoAtlas_->setChecked(p.AutoAtlasLookup != 0);
    const QSignalBlocker quietToo(useACS_);
    useACS_->setChecked(p.UseACS != 0);
  }
  illinois_->setChecked(p.IllinoisWarning != 0);
  useOtherWP_->setChecked(p.UseOtherWP != 0);
  autoGraphMinWeight_->setValue(p.AutoGraphMinWeight);
  SelectValue(autoScoreMode_, p.AutoScoreMode);
  swissEph_->setText(QPath(p.SwissEphPath));
  userName_->setText(Q(Trim(GetPreferenceText(wb_.session, "UserName", ""))));
  const QString font = Q(Trim(GetPreferenceText(wb_.session, "ReportFontName", "")));
  reportFont_->setCurrentText(font.isEmpty() ? QStringLiteral("DejaVu Sans") : font);
  (p.CUAKeys ? cuaKeys_ : novaKeys_)->setChecked(true);
  (p.AMPM ? ampm_ : clock24_)->setChecked(true);
  wordProc_->setText(QPath(p.WordProc));
  SelectValue(houses_, p.Houses);
  SelectValue(zodiac_, p.Zodiac);
  SelectValue(progressions_, p.Progressions);
  SelectValue(pointOnCusp_, p.PointOnCusp);
  whichCusp_->setValue(p.WhichCusp);
  userAyan_->setText(AyanamsaText(p.UserAyan));
  (p.TrueNode ? trueNode_ : meanNode_)->setChecked(true);
  minPeakWidth_->setValue(p.MinPeakWidth);
  peakSD_->setValue(p.PeakSDFactor);
  forcePeakSD_->setValue(p.ForcePeakSDFactor);
  maxPeaks_->setValue(p.MaxPeaks);
  maxGapBars_->setValue(p.MaxGapBars);
  addCommonBars_->setValue(p.AddCommonBars);
  dynInterval_->setValue(p.DynInterval);
  dynStepDays_->setValue(p.DynStepDays);
  systemData_->setText(QPath(p.SystemDataPath));
  userData_->setText(QPath(p.UserDataPath));
}

bool PreferencesScreen::Apply() {
  Session& s = wb_.session;
  Preferences& p = s.prefs;
  if (userAyan_->text() != AyanamsaText(p.UserAyan) && !SetUserAyanamsa(s, L(userAyan_->text()))) {
    userAyan_->setFocus();
    return false;
  }
  p.SaveOnExit = saveOnExit_->isChecked() ? kTrue : kFalse;
  SetMenuOption(s, MenuOption::Sound, sound_->isChecked());
  SetMenuOption(s, MenuOption::Prompt, prompt_->isChecked());
  SetMenuOption(s, MenuOption::MonthFirst, monthFirst_->isChecked());
  SetMenuOption(s, MenuOption::CUAKeys, cuaKeys_->isChecked());
  SetMenuOption(s, MenuOption::AMPM, ampm_->isChecked());
  SetMenuOption(s, MenuOption::TrueNode, trueNode_->isChecked());
  SetMenuOption(s, MenuOption::Houses, houses_->currentData().toInt());
  SetMenuOption(s, MenuOption::Zodiac, zodiac_->currentData().toInt());
  SetMenuOption(s, MenuOption::Progressions, progressions_->currentData().toInt());
  SetUserHouse(s, pointOnCusp_->currentData().toInt(), whichCusp_->value());
  p.WordProc = PathOf(wordProc_->text().trimmed());
  p.UseOtherWP = useOtherWP_->isChecked() ? kTrue : kFalse;
  p.IllinoisWarning = illinois_->isChecked() ? kTrue : kFalse;
  p.AutoGraphMinWeight = float(autoGraphMinWeight_->value());
  p.AutoScoreMode = int16_t(autoScoreMode_->currentData().toInt());
  const std::string ephemeris = PathOf(swissEph_->text().trimmed());
  // "Save Preferences" leaves the ephemeris folder out, so a change is
  // written at once; the ephemeris opens there from the next start.
  if (!ephemeris.empty() && EnsureBackslash(ephemeris) != p.SwissEphPath) {
    p.SwissEphPath = EnsureBackslash(ephemeris);
    PutProfileText(s, "Vintar", "SwissEphPath", p.SwissEphPath);
  }
  // The reports read these two from the file when they start.
  PutProfileText(s, "Vintar", "UserName", L(userName_->text().trimmed()));
  PutProfileText(s, "Vintar", "ReportFontName", L(reportFont_->currentText().trimmed()));
  p.MinPeakWidth = int16_t(minPeakWidth_->value());
  p.PeakSDFactor = float(peakSD_->value());
  p.ForcePeakSDFactor = float(forcePeakSD_->value());
  p.MaxPeaks = int16_t(maxPeaks_->value());
  p.MaxGapBars = int16_t(maxGapBars_->value());
  p.AddCommonBars = int16_t(addCommonBars_->value());
  p.DynInterval = float(dynInterval_->value());
  p.DynStepDays = int16_t(dynStepDays_->value());
  const std::string system = PathOf(systemData_->text().trimmed());
  const std::string user = PathOf(userData_->text().trimmed());
  if (!system.empty()) p.SystemDataPath = EnsureBackslash(system);
  if (!user.empty()) p.UserDataPath = EnsureBackslash(user);
  // The houses, the zodiac and the node change the chart screens' names.
  wb_.Changed();
  return true;
}

void PreferencesScreen::accept() {
  if (!Apply()) return;
  QDialog::accept();
}

void PreferencesScreen::SavePreferencesClicked() {
  if (!Apply()) return;
  SavePreferencesCommand(wb_.session);
}

void PreferencesScreen::RestorePreferencesClicked() {
  Session& s = wb_.session;
  RestorePreferencesCommand(s);
  Load();
  wb_.Changed();
}

// CenturyDef ------------------------------------------------------------------

CenturyDef::CenturyDef(Workbench& wb, QWidget* parent, Mode mode) : QDialog(parent), wb_(wb), mode_(mode) {
  setObjectName("CenturyDef");
  const Session& s = wb_.session;
  const bool century = mode_ == Mode::Century;
  setWindowTitle(Q(century ? kCenturyTitle : kAyanamsaTitle));
  auto* layout = new QVBoxLayout(this);
  auto* prompt = new QLabel(Q(century ? kCenturyPrompt : kAyanamsaPrompt), this);
  prompt->setObjectName("lblPrompt");
  prompt->setWordWrap(true);
  value_ = new QLineEdit(century ? QString::number(s.CenturyBase) : AyanamsaText(s.prefs.UserAyan), this);
  value_->setObjectName("txtValue");
  value_->selectAll();
  prompt->setBuddy(value_);
  layout->addWidget(prompt);
  layout->addWidget(value_);
  layout->addWidget(OkCancelButtons(this));
  setMinimumWidth(380);
}

void CenturyDef::accept() {
  Session& s = wb_.session;
  const std::string text = L(value_->text());
  const bool ok = mode_ == Mode::Century ? SetCenturyBase(s, text) : SetUserAyanamsa(s, text);
  if (!ok) {
    value_->setFocus();
    value_->selectAll();
    return;
  }
  wb_.Changed();
  QDialog::accept();
}

void CenturyDef::reject() {
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

// HousePoint ------------------------------------------------------------------

HousePoint::HousePoint(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("HousePoint");
  setWindowTitle(tr("User Defined Houses"));
  const Session& s = wb_.session;
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(tr("Equal houses with a chosen point on a chosen cusp."), this));
  auto* form = new QFormLayout;
  point_ = new QComboBox(this);
  point_->setObjectName("cmbPoint");
  for (int point = 1; point <= kPointCount && size_t(point) < s.vocab.PointName.size(); ++point)
    point_->addItem(Q(s.vocab.PointName[size_t(point)]), point);
  cusp_ = Spin("spnCusp", 1, 12, this);
  name_ = new QLabel(this);
  name_->setObjectName("lblName");
  form->addRow(tr("&Point:"), point_);
  form->addRow(tr("&Cusp:"), cusp_);
  form->addRow(tr("House system:"), name_);
  layout->addLayout(form);
  layout->addWidget(OkCancelButtons(this));
  Choose(s.prefs.PointOnCusp, s.prefs.WhichCusp);
  connect(point_, &QComboBox::currentIndexChanged, this, &HousePoint::ShowName);
  connect(cusp_, &QSpinBox::valueChanged, this, &HousePoint::ShowName);
}

void HousePoint::Choose(int point, int cusp) {
  SelectValue(point_, point);
  cusp_->setValue(cusp);
  ShowName();
}

void HousePoint::ShowName() {
  Vocabulary names = wb_.session.vocab;
  SetUserHouseName(names, point_->currentData().toInt(), cusp_->value());
  name_->setText(Q(names.HouseSystemName[kUserHouseSystem]));
}

void HousePoint::accept() {
  Session& s = wb_.session;
  if (!SetUserHouse(s, point_->currentData().toInt(), cusp_->value())) return;
  wb_.Changed();
  QDialog::accept();
}

void HousePoint::reject() {
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

}  // namespace vintar
