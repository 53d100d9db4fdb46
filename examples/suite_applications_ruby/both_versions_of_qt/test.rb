# Drives the same scene in a program with Qt 5 and in one with Qt 6, side by side. Nobody has to say
# which is which.

def main
  programs = %w[scene scene6].map { |name| startApplication(name) }
  programs.each do |program|
    setApplicationContext(program)
    test.log("Greeting in #{program.toolkitVersion}")
    fill("{name='who'}", 'Ada')
    click("{name='greet'}")
    test.expect("{name='greeting'}", { text: 'Hello, Ada' }, comment: program.toolkitVersion)
  end
end
