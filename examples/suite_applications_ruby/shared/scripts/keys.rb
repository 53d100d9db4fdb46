# Presses the calculator's keys with these labels.
def press(labels)
  labels.split.each { |key| click({ type: 'Button', text: key, window: ':Calculator' }) }
end
