#include "screens/places/atlas_pick.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/parse.h"
#include "screens/common/qt_text.h"

namespace vintar {
namespace {

CandidateRunner& Runner() {
  static CandidateRunner runner;
  return runner;
}

QString Utf8(const std::string& text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

}  // namespace

void SetCandidateRunner(CandidateRunner runner) { Runner() = std::move(runner); }

QString AtlasPlaceCaption(const AtlasPlace& place) {
  QStringList parts{Utf8(place.name)};
  if (!place.divisionName.empty()) parts << Utf8(place.divisionName);
  if (!place.countryName.empty()) parts << Utf8(place.countryName);
  return parts.join(QStringLiteral(", "));
}

ACSPlace::ACSPlace(const AtlasCandidates& candidates, QWidget* parent) : QDialog(parent) {
  setObjectName("ACSPlace");
  setWindowTitle(Q(candidates.Title.empty() ? std::string(kSelectCountryTitle) : candidates.Title));
  auto* layout = new QVBoxLayout(this);
  note_ = new QLabel(this);
  note_->setObjectName("lblNote");
  note_->setText(candidates.Fuzzy ? tr("No place of that name was found. Places of a similar name:")
                                  : tr("Several places have that name. Choose one:"));
  layout->addWidget(note_);

  list_ = new QTreeWidget(this);
  list_->setObjectName("lstPlaces");
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAlternatingRowColors(true);
  list_->setHeaderLabels({tr("Place"), tr("State or Province"), tr("Country"), tr("Latitude"), tr("Longitude"),
                          tr("Time Zone")});
  for (const AtlasPlace& p : candidates.Places) {
    auto* item = new QTreeWidgetItem(list_);
    item->setText(0, Utf8(p.name) + (p.personal ? tr(" (my place)") : QString()));
    item->setText(1, Utf8(p.divisionName));
    item->setText(2, Utf8(p.countryName));
    item->setText(3, Q(FormatLatitude(p.latitude)));
    item->setText(4, Q(FormatLongitude(p.longitude)));
    item->setText(5, Utf8(p.zone));
  }
  for (int c = 0; c < list_->columnCount(); ++c) list_->resizeColumnToContents(c);
  list_->setMinimumSize(640, 260);
  layout->addWidget(list_);

  auto* buttons = new QDialogButtonBox(this);
  ok_ = buttons->addButton(tr("&OK"), QDialogButtonBox::AcceptRole);
  ok_->setObjectName("OKButton");
  ok_->setDefault(true);
  QPushButton* cancel = buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("CancelButton");
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    if (SelectedIndex() >= 0) accept();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { accept(); });
  connect(list_, &QTreeWidget::currentItemChanged, this,
          [this] { ok_->setEnabled(SelectedIndex() >= 0); });
  SelectIndex(candidates.Places.empty() ? -1 : 0);
  ok_->setEnabled(SelectedIndex() >= 0);
  list_->setFocus();
}

int ACSPlace::SelectedIndex() const {
  QTreeWidgetItem* item = list_->currentItem();
  return item ? list_->indexOfTopLevelItem(item) : -1;
}

void ACSPlace::SelectIndex(int index) {
  QTreeWidgetItem* item = list_->topLevelItem(index);
  list_->setCurrentItem(item);
  if (item) item->setSelected(true);
}

bool ChooseAtlasPlace(Workbench& wb, QWidget* parent, const std::string& typed, AtlasPlace& chosen) {
  Session& s = wb.session;
  if (!PrepareAtlasLookup(s, wb.atlas)) return false;  // the reason is shown
  const AtlasCandidates found = FindEntryPlace(s, wb.atlas, typed);
  if (found.Places.empty()) {
    ReportAtlasStatus(s, found.Status == AtlasStatus::kFound ? AtlasStatus::kNotRecognised : found.Status);
    return false;
  }
  int index = 0;
  if (found.Places.size() > 1 || found.Fuzzy) {
    ACSPlace dialog(found, parent);
    const int result = Runner() ? Runner()(dialog) : dialog.exec();
    index = dialog.SelectedIndex();
    if (result != QDialog::Accepted || index < 0) return false;
  }
  chosen = found.Places[size_t(index)];
  return true;
}

bool PickAtlasPlace(Workbench& wb, QWidget* parent, const std::string& typed, int year, int month, int day, int hour,
                    int minute, AtlasEntryFields& out) {
  AtlasPlace place;
  if (!ChooseAtlasPlace(wb, parent, typed, place)) return false;
  AtlasEntryFields fields = FillEntryFields(wb.session, wb.atlas, place, year, month, day, hour, minute);
  if (fields.Failed) return false;
  out = fields;
  return true;
}

}  // namespace vintar
