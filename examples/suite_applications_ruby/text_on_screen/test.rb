# Clicks on what a calculator shows, by its text alone.

def main
  startApplication('calculator')
  window = waitForObject(':Calculator')
  test.ocrTextPresent('Backspace', { timeout: 20_000 }, window)

  test.startSection('Keys')
  %w[7 8 Backspace 9].each { |key| click(findOcrText(key, {}, window)) }
  test.expect(':Display', { text: '79' })
  click(findOcrText('Clear All', {}, window))
  test.expect(':Display', { text: '0' })
  test.endSection

  test.ocrTextNotPresent('Save as', {}, window)
  words = getAllOcrText({}, window).map { |word| word['text'] }
  test.log("#{words.size} words: #{words.join(' ')}")
end
