// The DXF corpus under tests/data/corpus: its manifest rows, for
// value-parameterised tests over the files.
#ifndef VORA_TESTS_HOST_DXF_CORPUS_H
#define VORA_TESTS_HOST_DXF_CORPUS_H

#include <fstream>
#include <ostream>
#include <sstream>
#include <cctype>
#include <string>
#include <vector>

namespace vora_test {

struct CorpusFile {
  std::string name;
  std::string version;   // $ACADVER or "none ..."
  std::string encoding;  // "ascii; ...", "binary; ..."
  long defectLine = 0;   // malformed files: the 1-based line of the defect
  bool good() const { return defectLine == 0 && encoding.rfind("binary", 0) != 0; }
  bool binary() const { return encoding.rfind("binary", 0) == 0; }
  std::string path() const { return std::string(VORA_TEST_DATA_DIR) + "/corpus/" + name; }
};

inline void PrintTo(const CorpusFile& f, std::ostream* os) { *os << f.name; }

inline std::vector<CorpusFile> corpusFiles() {
  std::vector<CorpusFile> out;
  std::ifstream in(std::string(VORA_TEST_DATA_DIR) + "/corpus/MANIFEST.tsv");
  std::string line;
  std::getline(in, line);  // column names
  while (std::getline(in, line)) {
    std::vector<std::string> cols;
    std::stringstream ss(line);
    std::string col;
    while (std::getline(ss, col, '\t')) cols.push_back(col);
    if (cols.size() < 4) continue;
    CorpusFile f;
    f.name = cols[0];
    f.version = cols[2];
    f.encoding = cols[3];
    if (cols.size() >= 11 && !cols[10].empty()) f.defectLine = std::stol(cols[10]);
    out.push_back(f);
  }
  return out;
}

inline std::vector<CorpusFile> goodCorpusFiles() {
  std::vector<CorpusFile> out;
  for (auto& f : corpusFiles())
    if (f.good()) out.push_back(f);
  return out;
}

inline std::string corpusTestName(const std::string& file) {
  std::string s;
  for (char c : file) s += (std::isalnum(static_cast<unsigned char>(c)) ? c : '_');
  return s;
}

}  // namespace vora_test

#endif
