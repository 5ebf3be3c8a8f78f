#include "screens/main_menu.h"

#include <QAbstractTableModel>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>
#include <filesystem>

#include "calc/cache.h"
#include "core/menu_options.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "core/text.h"
#include "screens/chart/chart_menu.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/project/file_menu.h"
#include "screens/places/places_menu.h"
#include "screens/common/tool_window.h"
#include "screens/rectify/rectify_menu.h"
#include "screens/research/research_menu.h"
#include "screens/groups/groups_menu.h"

namespace vintar {

namespace {

// Element `n` (from 1) of a record's "|" list of category values.
std::string CategoryElement(const std::string& list, int n) {
  int index = 1;
  size_t start = 0;
  while (start <= list.size()) {
    size_t bar = list.find('|', start);
    if (bar == std::string::npos) bar = list.size();
    if (index == n) return Trim(list.substr(start, bar - start));
    if (bar == list.size()) break;
    start = bar + 1;
    ++index;
  }
  return {};
}

std::vector<std::string> CategoryNamesOf(const ProjectHeader& header) {
  std::vector<std::string> names;
  for (int i = 1; i <= header.CategoryCount; ++i) {
    std::string name;
    int type = 0;
    GetCategoryDefinition(header, i, name, type);
    names.push_back(Trim(name));
  }
  return names;
}

// The records of the open project, read straight from the session: the
// table never holds a copy. The "On" column toggles a record's enabled flag.
class RecordTableModel : public QAbstractTableModel {
 public:
  explicit RecordTableModel(Workbench& wb, QObject* parent) : QAbstractTableModel(parent), wb_(wb) {}

  enum Column { kNumber, kOn, kDate, kTime, kDescription, kPlace, kRange, kFixedColumns };

  void Reload() {
    beginResetModel();
    categories_ = CategoryNamesOf(wb_.session.project.Header);
    endResetModel();
  }

  int rowCount(const QModelIndex& parent) const override {
    if (parent.isValid() || !wb_.session.project.Open) return 0;
    const ProjectState& p = wb_.session.project;
    return std::clamp<int>(p.Header.RecordCount, 0, int(p.Events.size()) - 1);
  }
  int columnCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : kFixedColumns + int(categories_.size());
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* names[] = {"No.", "On", "Date", "Time", "Description", "Place", "Range"};
    if (section < kFixedColumns) return QString(names[section]);
    return Q(categories_[size_t(section - kFixedColumns)]);
  }

  Qt::ItemFlags flags(const QModelIndex& index) const override {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.column() == kOn) f |= Qt::ItemIsUserCheckable;
    return f;
  }

  QVariant data(const QModelIndex& index, int role) const override {
    const Session& s = wb_.session;
    const EventRecord& r = s.project.Events[size_t(index.row() + 1)];
    const int column = index.column();
    if (role == Qt::CheckStateRole && column == kOn) return r.Enabled ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::UserRole) {  // sort keys
      switch (column) {
        case kNumber: return index.row() + 1;
        case kOn: return r.Enabled ? 1 : 0;
        case kDate:
        case kTime: return r.JulianDay;
        case kRange: return int(r.DayRange);
        default: break;
      }
      return data(index, Qt::DisplayRole).toString().toLower();
    }
    if (role == Qt::ForegroundRole && !r.Enabled) return QColor(Qt::gray);
    if (role != Qt::DisplayRole) return {};
    switch (column) {
      case kNumber: return index.row() + 1;
      case kOn: return {};
      case kDate: return Q(FormatDate(s, r.Day, r.Month, r.Year));
      case kTime: return Q(FormatTime(r.Hour, r.Minute, r.Second, s.prefs.AMPM != 0));
      case kDescription: return Q(Trim(r.Description));
      case kPlace: return Q(Trim(r.Placename));
      case kRange:
        if (r.DayRange > 180) return QString("Year Marker");
        if (r.DayRange > 0) return QString("+/-%1 Days").arg(r.DayRange);
        return QString();
      default: return Q(CategoryElement(r.Categories, column - kFixedColumns + 1));
    }
  }

  bool setData(const QModelIndex& index, const QVariant& value, int role) override {
    if (role != Qt::CheckStateRole || index.column() != kOn) return false;
    const bool on = value.toInt() == Qt::Checked;
    if (!SetRecordEnabledFromList(index.row() + 1, on)) return false;
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount({}) - 1));
    wb_.Changed();
    return true;
  }

 private:
  bool SetRecordEnabledFromList(int number, bool on) {
    ProjectState& p = wb_.session.project;
    if (number < 1 || number > rowCount({})) return false;
    EventRecord& r = p.Events[size_t(number)];
    const int16_t v = on ? kTrue : kFalse;
    if (r.Enabled == v) return true;
    r.Enabled = v;
    p.Status.DataChanged = kTrue;
    p.Status.ReCalculate = -1;
    UpdateTitle(wb_.session, p.ProjectPath);
    return true;
  }

  Workbench& wb_;
  std::vector<std::string> categories_;
};

QString YesNo(bool b) { return b ? QStringLiteral("yes") : QStringLiteral("no"); }

}  // namespace

struct MainMenu::Parts {
  QLabel* titlePanel = nullptr;
  QLabel* natal = nullptr;
  QLabel* caches = nullptr;
  QLabel* picture = nullptr;
  RecordTableModel* model = nullptr;
  QSortFilterProxyModel* proxy = nullptr;
  QTableView* table = nullptr;
  std::vector<QAction*> projectActions;
  std::array<QAction*, 5> recent{};
  std::vector<std::pair<MenuOption, QAction*>> flagActions;
  std::vector<std::tuple<MenuOption, int, QAction*>> choiceActions;
};

MainMenu::MainMenu(Workbench& workbench, QWidget* parent)
    : QMainWindow(parent), wb_(workbench), parts_(std::make_unique<Parts>()) {
  setObjectName("MainMenu");
  wb_.projectChanged = [this] { Refresh(); };
  InstallSaveDialog(wb_, this);
  wb_.editEvents = EditData;
  wb_.selectRecords = SelectRecordsFromEditor;
  BuildPanels();
  BuildMenus();
  ResetMainWindow(wb_.session);
  Refresh();
  resize(1000, 680);
  KeepFormPlace(this, wb_.session, objectName());
}

MainMenu::~MainMenu() { wb_.projectChanged = [] {}; }

void MainMenu::BuildPanels() {
  auto* central = new QWidget(this);
  auto* layout = new QVBoxLayout(central);
  Parts& p = *parts_;
  p.titlePanel = new QLabel(central);
  p.titlePanel->setObjectName("TitlePanel");
  QFont big = p.titlePanel->font();
  big.setPointSizeF(big.pointSizeF() * 1.3);
  big.setBold(true);
  p.titlePanel->setFont(big);
  layout->addWidget(p.titlePanel);

  auto* top = new QHBoxLayout;
  auto* natalBox = new QGroupBox(tr("Natal details"), central);
  auto* natalLayout = new QVBoxLayout(natalBox);
  p.natal = new QLabel(natalBox);
  p.natal->setObjectName("NatalSummary");
  p.natal->setTextInteractionFlags(Qt::TextSelectableByMouse);
  p.natal->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  natalLayout->addWidget(p.natal);
  top->addWidget(natalBox, 3);
  auto* cacheBox = new QGroupBox(tr("Position caches"), central);
  auto* cacheLayout = new QVBoxLayout(cacheBox);
  p.caches = new QLabel(cacheBox);
  p.caches->setObjectName("CacheSummary");
  p.caches->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  cacheLayout->addWidget(p.caches);
  top->addWidget(cacheBox, 2);
  layout->addLayout(top);

  p.model = new RecordTableModel(wb_, this);
  p.proxy = new QSortFilterProxyModel(this);
  p.proxy->setSourceModel(p.model);
  p.proxy->setSortRole(Qt::UserRole);
  p.table = new QTableView(central);
  p.table->setObjectName("RecordTable");
  p.table->setModel(p.proxy);
  p.table->setSortingEnabled(true);
  p.table->sortByColumn(0, Qt::AscendingOrder);
  p.table->setSelectionBehavior(QAbstractItemView::SelectRows);
  p.table->setAlternatingRowColors(true);
  p.table->verticalHeader()->setVisible(false);
  p.table->setWordWrap(false);
  p.table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  p.table->horizontalHeader()->setStretchLastSection(true);
  connect(p.table, &QTableView::doubleClicked, this, [this] {
    EditData(wb_, this);
    Refresh();
  });
  layout->addWidget(p.table, 1);
  setCentralWidget(central);
  statusBar()->setObjectName("StatusBar");
}

QAction* MainMenu::AddCommand(QMenu* menu, const QString& text, const QKeySequence& keys, bool needsProject,
                              const std::function<void()>& run, const QString& name) {
  QAction* action = menu->addAction(text);
  if (!name.isEmpty()) action->setObjectName(name);
  if (!keys.isEmpty()) action->setShortcut(keys);
  connect(action, &QAction::triggered, this, [this, run] {
    run();
    Refresh();
  });
  if (needsProject) parts_->projectActions.push_back(action);
  return action;
}

void MainMenu::BuildMenus() {
  Workbench& wb = wb_;
  QWidget* w = this;
  QMenu* file = menuBar()->addMenu(tr("&File"));
  file->setObjectName("mnuFile");
  AddCommand(file, tr("&New Project..."), QKeySequence::New, false, [&wb, w] { FileNew(wb, w); }, "mnuNew");
  AddCommand(file, tr("&Open Project..."), QKeySequence::Open, false, [&wb, w] { FileOpen(wb, w); }, "mnuOpen");
  AddCommand(file, tr("&Save Project"), QKeySequence::Save, true, [&wb, w] { FileSave(wb, w); }, "mnuSave");
  AddCommand(file, tr("Save Project &As..."), QKeySequence("Ctrl+Shift+S"), true,
             [&wb, w] { FileSaveAs(wb, w); }, "mnuSaveAs");
  file->addSeparator();
  AddCommand(file, tr("&Edit Data..."), QKeySequence("Ctrl+E"), true, [&wb, w] { EditData(wb, w); }, "mnuEditData");
  AddCommand(file, tr("Natal &Details..."), QKeySequence("Ctrl+D"), true, [&wb, w] { EditNatal(wb, w); },
             "mnuNatal");
  AddCommand(file, tr("Data &Categories..."), QKeySequence("Ctrl+K"), true, [&wb, w] { EditCategories(wb, w); },
             "mnuCategories");
  AddCommand(file, tr("Edit &Title..."), QKeySequence("Ctrl+Shift+T"), true, [&wb, w] { FileEditTitle(wb, w); },
             "mnuEditTitle");
  AddCommand(file, tr("No&tepad"), QKeySequence("Ctrl+Shift+N"), true, [&wb, w] { FileNotepad(wb, w); },
             "mnuNotepad");
  QMenu* dataOptions = file->addMenu(tr("Data &Options"));
  AddCommand(dataOptions, tr("&Merge..."), QKeySequence("Ctrl+Shift+M"), true, [&wb, w] { FileMerge(wb, w); },
             "mnuMerge");
  AddCommand(dataOptions, tr("S&plit..."), QKeySequence("Ctrl+Shift+P"), true, [&wb, w] { FileSplit(wb, w); },
             "mnuSplit");
  AddCommand(dataOptions, tr("S&ort..."), QKeySequence("Ctrl+Shift+O"), true, [&wb, w] { FileSort(wb, w); },
             "mnuSort");
  file->addSeparator();
  AddCommand(file, tr("&Import Charts..."), QKeySequence("Ctrl+I"), false, [&wb, w] { FileImport(wb, w); },
             "mnuImport");
  AddCommand(file, tr("E&xport Chart..."), QKeySequence("Ctrl+Shift+E"), true, [&wb, w] { FileExport(wb, w); },
             "mnuExport");
  AddCommand(file, tr("&Print List of Records..."), QKeySequence::Print, true,
             [&wb, w] { RunPrintEvents(wb, w); }, "mnuPrintEvents");
  file->addSeparator();
  for (int i = 1; i <= 4; ++i) {
    QAction* a = file->addAction(QString());
    a->setObjectName(QString("mnuRecent%1").arg(i));
    a->setCheckable(true);
    a->setShortcut(QKeySequence(QString("Alt+%1").arg(i)));
    connect(a, &QAction::triggered, this, [this, i] {
      FileOpenRecent(wb_, this, i);
      Refresh();
    });
    parts_->recent[size_t(i)] = a;
  }
  file->addSeparator();
  QAction* quit = file->addAction(tr("E&xit"));
  quit->setObjectName("mnuExit");
  quit->setShortcut(QKeySequence::Quit);
  connect(quit, &QAction::triggered, this, &QWidget::close);

  QMenu* rect = menuBar()->addMenu(tr("&Rectification"));
  rect->setObjectName("mnuRectify");
  AddCommand(rect, tr("&Viability Report..."), QKeySequence("F4"), true, [&wb, w] { ShowViability(wb, w); },
             "mnuValRep");
  AddCommand(rect, tr("&Event Graphs..."), QKeySequence("F5"), true, [&wb, w] { ShowRectify(wb, w); },
             "RectEvents");
  AddCommand(rect, tr("&Angle Search..."), QKeySequence("F6"), true, [&wb, w] { ShowAngleSearch(wb, w); },
             "mnuAngleSearch");
  AddCommand(rect, tr("&Transit Search..."), QKeySequence("F7"), true, [&wb, w] { ShowTransitSearch(wb, w); },
             "RectTransits");
  AddCommand(rect, tr("Auto &Rectify..."), QKeySequence("F8"), true, [&wb, w] { ShowAutoRectify(wb, w); },
             "RectAuto");
  AddCommand(rect, tr("&Dynamic Chart..."), QKeySequence("F9"), true, [&wb, w] { ShowDynamicChart(wb, w); },
             "RectChart");

  QMenu* family = menuBar()->addMenu(tr("Fa&mily"));
  family->setObjectName("mnuFamily");
  AddCommand(family, tr("&Group Search..."), QKeySequence("Ctrl+G"), true, [&wb, w] { ShowGroupSearch(wb, w); },
             "mnuGroupSearch");
  AddCommand(family, tr("Chart &Strips..."), QKeySequence("Ctrl+Shift+G"), true, [&wb, w] { ShowGroupStrips(wb, w); },
             "mnuGroupStrips");
  AddCommand(family, tr("&Automatic Report..."), QKeySequence("Ctrl+Shift+R"), true,
             [&wb, w] { ShowGroupReport(wb, w); }, "mnuGroupReport");

  QMenu* research = menuBar()->addMenu(tr("Re&search"));
  research->setObjectName("mnuResearch");
  AddCommand(research, tr("&Points..."), QKeySequence("Ctrl+Shift+I"), false, [&wb, w] { ShowPointList(wb, w); },
             "mnuResPoints");
  AddCommand(research, tr("&Tabulate..."), QKeySequence("F11"), true, [&wb, w] { ShowTabulate(wb, w); },
             "mnuResTabulate");
  AddCommand(research, tr("&Criteria Search..."), QKeySequence("F12"), true,
             [&wb, w] { ShowCriteriaSearch(wb, w); }, "mnuResCriteria");
  AddCommand(research, tr("&Filter Data Records..."), QKeySequence("Ctrl+Shift+C"), true,
             [&wb, w] { ShowRecordSelection(wb, w); }, "ResearchFilter");
  research->addSeparator();
  AddCommand(research, tr("C&ontrol Data..."), QKeySequence("Ctrl+Shift+D"), false,
             [&wb, w] { ShowControlData(wb, w); }, "mnuRandParam");

  QMenu* places = menuBar()->addMenu(tr("&Places"));
  places->setObjectName("mnuPlaces");
  AddCommand(places, tr("&Atlas Look-up..."), QKeySequence("Ctrl+L"), false, [&wb, w] { ShowAtlas(wb, w); },
             "mnuAtlas");
  AddCommand(places, tr("&Places..."), QKeySequence("Ctrl+Shift+L"), false, [&wb, w] { ShowPlaces(wb, w); },
             "mnuPlacesList");
  AddCommand(places, tr("Time &Zones..."), QKeySequence("Ctrl+Shift+Z"), false, [&wb, w] { ShowZoneTable(wb, w); },
             "mnuZones");

  BuildOptionsMenu();

  QMenu* help = menuBar()->addMenu(tr("&Help"));
  help->setObjectName("mnuHelp");
  QAction* about = help->addAction(tr("&About Vintar..."));
  about->setObjectName("mnuAbout");
  about->setShortcut(QKeySequence::HelpContents);
  connect(about, &QAction::triggered, this, [this] { ShowAbout(); });
}

void MainMenu::BuildOptionsMenu() {
  QMenu* options = menuBar()->addMenu(tr("&Options"));
  options->setObjectName("mnuOptions");
  auto flag = [&](QMenu* menu, const QString& text, MenuOption option, int value, const QString& name) {
    QAction* a = menu->addAction(text);
    a->setObjectName(name);
    a->setCheckable(true);
    connect(a, &QAction::triggered, this, [this, option, value] {
      // The last zodiac (the user's ayanamsa) and the last house system (a
      // point on a cusp) ask for their value first; a cancel changes nothing.
      if (option == MenuOption::Zodiac && value == 9) {
        if (OptionsAyanamsa(wb_, this)) SetMenuOption(wb_.session, option, value);
      } else if (option == MenuOption::Houses && value == 14) {
        if (OptionsUserHouse(wb_, this)) SetMenuOption(wb_.session, option, value);
      } else {
        SetMenuOption(wb_.session, option, value);
      }
      Refresh();
    });
    parts_->choiceActions.emplace_back(option, value, a);
    return a;
  };
  auto toggle = [&](const QString& text, MenuOption option, const QString& name) {
    QAction* a = options->addAction(text);
    a->setObjectName(name);
    a->setCheckable(true);
    connect(a, &QAction::triggered, this, [this, option](bool on) {
      SetMenuOption(wb_.session, option, on ? 1 : 0);
      Refresh();
    });
    parts_->flagActions.emplace_back(option, a);
  };
  toggle(tr("&Sound"), MenuOption::Sound, "PutSoundOn");
  toggle(tr("&Prompt for Notepad"), MenuOption::Prompt, "PutPromptOn");
  QMenu* node = options->addMenu(tr("&Node"));
  flag(node, tr("&True Node"), MenuOption::TrueNode, 1, "TrueNode");
  flag(node, tr("&Mean Node"), MenuOption::TrueNode, 0, "MeanNode");
  QMenu* dates = options->addMenu(tr("&Dates"));
  flag(dates, tr("&Month First"), MenuOption::MonthFirst, 1, "PutMonthFirstOn");
  flag(dates, tr("&Day First"), MenuOption::MonthFirst, 0, "PutMonthFirstOff");
  QMenu* clock = options->addMenu(tr("&Time Display"));
  flag(clock, tr("&AM/PM"), MenuOption::AMPM, 1, "AMPMOn");
  flag(clock, tr("&24 Hour"), MenuOption::AMPM, 0, "Clock24");
  QMenu* keys = options->addMenu(tr("&Keys"));
  flag(keys, tr("&CUA Keys"), MenuOption::CUAKeys, 1, "KeysCUA");
  flag(keys, tr("&Nova Keys (Enter and arrows move between fields)"), MenuOption::CUAKeys, 0, "KeysNova");
  options->addSeparator();
  struct ListMenu {
    QString title;
    MenuOption option;
    QString name;
  } lists[] = {{tr("&Houses"), MenuOption::Houses, "Houses"},
               {tr("&Zodiac"), MenuOption::Zodiac, "Zodiac"},
               {tr("P&rogressions"), MenuOption::Progressions, "Progressions"}};
  for (const ListMenu& l : lists) {
    QMenu* menu = options->addMenu(l.title);
    menu->setObjectName(l.name);
    for (const MenuChoice& c : MenuOptionChoices(wb_.session, l.option))
      flag(menu, Q(c.Caption), l.option, c.Value, l.name + QString::number(c.Value));
  }
  QAction* century = options->addAction(tr("&Century..."));
  century->setObjectName("CentDef");
  connect(century, &QAction::triggered, this, [this] { OptionsCentury(wb_, this); });
  options->addSeparator();
  QAction* prefs = options->addAction(tr("Pr&eferences..."));
  prefs->setObjectName("mnuPreferences");
  prefs->setShortcut(QKeySequence::Preferences);
  connect(prefs, &QAction::triggered, this, [this] {
    EditPreferences(wb_, this);
    Refresh();
  });
  QAction* save = options->addAction(tr("Sa&ve Preferences"));
  save->setObjectName("mnuSavePrefs");
  connect(save, &QAction::triggered, this, [this] { SavePreferencesCommand(wb_.session); });
  QAction* restore = options->addAction(tr("&Restore Preferences"));
  restore->setObjectName("mnuRestorePrefs");
  connect(restore, &QAction::triggered, this, [this] {
    RestorePreferencesCommand(wb_.session);
    Refresh();
  });
}

void MainMenu::ShowAbout() {
  const QString text = tr(
      "<h3>Vintar %1</h3>"
      "<p>A research workbench for astrologers: rectification from dated life events, harmonic patterns "
      "of families and groups, and research over many charts.</p>"
      "<p><b>Licences and data sources</b></p>"
      "<ul>"
      "<li>Planetary positions: the Swiss Ephemeris by Astrodienst AG, used under the GNU Affero General "
      "Public License.</li>"
      "<li>Places: GeoNames (www.geonames.org), Creative Commons Attribution 4.0.</li>"
      "<li>Time zone history: the IANA tz database (public domain), read through the date library of "
      "Howard Hinnant (MIT licence).</li>"
      "<li>User interface: Qt %2 (GNU LGPL 3). Glyphs: DejaVu fonts (free licence).</li>"
      "</ul>")
                           .arg(QApplication::applicationVersion(), QString(qVersion()));
  QMessageBox box(QMessageBox::Information, tr("About Vintar"), text, QMessageBox::Ok, this);
  box.setObjectName("AboutBox");
  box.setTextFormat(Qt::RichText);
  box.exec();
}

void MainMenu::Refresh() {
  Session& s = wb_.session;
  ProjectState& p = s.project;
  Parts& parts = *parts_;
  if (p.Open && !Trim(p.ProjectPath).empty()) UpdateRecentFiles(s, wb_.recent);
  setWindowTitle(Q(s.WindowTitle));
  parts.titlePanel->setText(Q(s.TitlePanel));
  for (QAction* a : parts.projectActions) a->setEnabled(p.Open);
  for (int i = 1; i <= 4; ++i) {
    QAction* a = parts.recent[size_t(i)];
    const std::string& caption = wb_.recent.Captions[size_t(i)];
    a->setVisible(!Trim(caption).empty());
    a->setText(QPath(caption));
    a->setChecked(wb_.recent.Checked[size_t(i)]);
  }
  for (auto& [option, action] : parts.flagActions) action->setChecked(MenuOptionValue(s, option) != 0);
  for (auto& [option, value, action] : parts.choiceActions) action->setChecked(MenuOptionValue(s, option) == value);

  if (!p.Open) {
    parts.natal->setText(tr("No project is open. Use File, New Project or Open Project."));
  } else {
    const ProjectHeader& h = p.Header;
    QString natal = QString("<table>"
                            "<tr><td><b>Name</b></td><td>%1</td></tr>"
                            "<tr><td><b>Date</b></td><td>%2</td></tr>"
                            "<tr><td><b>Time</b></td><td>%3 (between %4 and %5)</td></tr>"
                            "<tr><td><b>Place</b></td><td>%6</td></tr>"
                            "<tr><td><b>Latitude, longitude</b></td><td>%7, %8</td></tr>"
                            "<tr><td><b>Zone</b></td><td>%9 %10</td></tr>"
                            "<tr><td><b>Natal details</b></td><td>%11</td></tr>"
                            "</table>")
                        .arg(Q(Trim(h.Name)).toHtmlEscaped(), Q(Trim(h.Date)).toHtmlEscaped(),
                             Q(Trim(h.Time)).toHtmlEscaped(), Q(Trim(h.EarliestTime)).toHtmlEscaped(),
                             Q(Trim(h.LatestTime)).toHtmlEscaped(), Q(Trim(h.Place)).toHtmlEscaped(),
                             Q(Trim(h.Latitude)).toHtmlEscaped(), Q(Trim(h.Longitude)).toHtmlEscaped(),
                             Q(Trim(h.ZoneMnemonic)).toHtmlEscaped())
                        .arg(Q(Trim(h.ZoneTime)).toHtmlEscaped(),
                             p.Status.NatalValid ? tr("complete") : tr("incomplete: enter them before rectifying"));
    parts.natal->setText(natal);
  }

  QStringList cacheLines;
  if (p.Open && !Trim(p.ProjectPath).empty()) {
    static const char* typeNames[] = {"Transits", "Secondary", "Tertiary", "Solar Arc"};
    std::error_code ec;
    for (int coordinate = 1; coordinate <= 2; ++coordinate) {
      for (int type = 0; type <= 3; ++type) {
        const std::string path = CacheFileName(p.ProjectPath, coordinate, type);
        const auto size = std::filesystem::file_size(path, ec);
        const QString frame = coordinate == 1 ? tr("Geocentric") : tr("Heliocentric");
        if (ec) continue;
        const long records = long(size / kCacheRecordSize);
        const bool current = records == p.Header.RecordCount && !p.Status.CacheDirty;
        cacheLines << tr("%1 %2: %3 records%4")
                          .arg(frame, typeNames[type])
                          .arg(records)
                          .arg(current ? QString() : tr(" (to be brought up to date)"));
      }
    }
    if (cacheLines.isEmpty()) cacheLines << tr("None yet: the graphs and searches build them.");
  } else if (p.Open) {
    cacheLines << tr("The project has no file yet.");
  }
  parts.caches->setText(cacheLines.join("\n"));

  parts.model->Reload();
  const int count = p.Open ? p.Header.RecordCount : 0;
  int enabled = 0;
  for (int i = 1; i <= parts.model->rowCount({}); ++i) enabled += p.Events[size_t(i)].Enabled ? 1 : 0;
  const int categories = p.Header.CategoryCount;
  statusBar()->showMessage(p.Open ? tr("%1 %2, %3 enabled, %4 %5; data changed: %6")
                                        .arg(count)
                                        .arg(count == 1 ? tr("record") : tr("records"))
                                        .arg(enabled)
                                        .arg(categories)
                                        .arg(categories == 1 ? tr("category") : tr("categories"))
                                        .arg(YesNo(p.Status.DataChanged || p.Status.NatChanged))
                                  : QString());
}

void MainMenu::closeEvent(QCloseEvent* event) {
  Session& s = wb_.session;
  if (s.project.Status.DataChanged || s.project.Status.NatChanged) {
    bool cancelled = false;
    ConfirmSaveChanges(s, cancelled);
    Refresh();
    if (cancelled) {
      event->ignore();
      return;
    }
  }
  SaveShutdownPreferences(s);
  event->accept();
}

namespace {

struct DesktopArguments {
  QString screenshotDir;
  QString project;
  QString configDir;
  bool ok = true;
};

DesktopArguments ParseArguments(const QStringList& args) {
  DesktopArguments a;
  for (int i = 1; i < args.size(); ++i) {
    if (args[i] == "--screenshot" && i + 1 < args.size()) {
      a.screenshotDir = args[++i];
    } else if (args[i] == "--config-dir" && i + 1 < args.size()) {
      a.configDir = args[++i];
    } else if (args[i].endsWith(".dat", Qt::CaseInsensitive)) {
      a.project = args[i];
    }
  }
  if (!a.screenshotDir.isEmpty() && a.project.isEmpty()) a.ok = false;
  return a;
}

StartupOptions OptionsFrom(const DesktopArguments& a, const QStringList& args) {
  StartupOptions options;
  options.ConfigDir = PathOf(a.configDir);
  options.CommandLine = L(args.mid(1).join(' '));
  return options;
}

// Opens `path` as the File menu's Open does, without its dialogue.
bool OpenFromCommandLine(Workbench& wb, const QString& path) {
  bool failed = false;
  QFileInfo info(path);
  wb.session.project.ProjectPath = PathOf(info.absoluteFilePath());
  wb.session.project.ProjectFolder = PathOf(info.absolutePath()) + "/";
  wb.session.project.ProjectStem = PathOf(info.completeBaseName());
  OpenProject(wb.session, PathOf(info.absoluteFilePath()), failed, nullptr, CacheFileName);
  return !failed;
}

int ScreenshotTour(QApplication& app, const DesktopArguments& a) {
  CapturingSink sink;
  Session session(sink);
  session.clock = Clock::Now();
  StartSession(session, OptionsFrom(a, app.arguments()));
  Workbench wb(session);
  wb.notepad.launch = [](const std::vector<std::string>&) { return true; };
  MainMenu window(wb);
  QDir().mkpath(a.screenshotDir);
  int shots = 0;
  auto shoot = [&](QWidget* widget, const QString& name) {
    widget->show();
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    const QString file = QDir(a.screenshotDir).filePath(name + ".png");
    if (widget->grab().save(file)) {
      ++shots;
      std::fprintf(stderr, "%s\n", PathOf(file).c_str());
    }
  };
  if (!OpenFromCommandLine(wb, a.project)) {
    for (const auto& m : sink.messages) std::fprintf(stderr, "%s: %s\n", m.title.c_str(), m.text.c_str());
    std::fprintf(stderr, "vintar-desktop: cannot open %s\n", PathOf(a.project).c_str());
    return 1;
  }
  window.Refresh();
  window.show();
  shoot(&window, "main-window");
  ScreenshotTourProject(wb, &window, shoot);
  ScreenshotTourPlaces(wb, &window, shoot);
  ScreenshotTourRectify(wb, &window, shoot);
  ScreenshotTourChart(wb, &window, shoot);
  ScreenshotTourResearch(wb, &window, shoot);
  ScreenshotTourGroups(wb, &window, shoot);
  ScreenshotTourReports(wb, &window, shoot);
  std::fprintf(stderr, "%d screens saved in %s\n", shots, PathOf(a.screenshotDir).c_str());
  return shots > 0 ? 0 : 1;
}

}  // namespace

int RunDesktop(QApplication& app) {
  QApplication::setApplicationVersion(PROJECT_VERSION_TEXT);
  const DesktopArguments a = ParseArguments(app.arguments());
  if (!a.ok) {
    std::fprintf(stderr, "usage: vintar-desktop [--config-dir DIR] [--screenshot DIR PROJECT.dat] [PROJECT.dat]\n");
    return 2;
  }
  if (!a.screenshotDir.isEmpty()) return ScreenshotTour(app, a);
  DesktopSink sink;
  Session session(sink);
  session.clock = Clock::Now();
  StartSession(session, OptionsFrom(a, app.arguments()));
  Workbench wb(session);
  MainMenu window(wb);
  sink.SetParent(&window);
  window.show();
  if (!a.project.isEmpty()) {
    QTimer::singleShot(0, &window, [&wb, &window, project = a.project] {
      OpenFromCommandLine(wb, project);
      window.Refresh();
    });
  }
  return app.exec();
}

}  // namespace vintar
