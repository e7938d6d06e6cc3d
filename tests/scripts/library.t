# SPDX-License-Identifier: Apache-2.0
# The operators and the example networks of mray, all of them as they come: each
# operator explains itself, generates in every mode and cast, and takes every
# type of wire; each example opens, renders and is saved as it stands.
use strict;
use warnings;
use File::Copy 'copy';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(put get run);
use Test::More;

my $batch = $ENV{TAVRIN_BATCH};
plan skip_all => 'TAVRIN_BATCH does not name tavrin-batch' if !defined $batch;
my $dir = tempdir(CLEANUP => 1);
delete @ENV{grep { /^TAVRN_/ } keys %ENV};
$ENV{SOURCE_DATE_EPOCH} = 1763461491;

sub batch { run($batch, @_) }

# ---------------------------------------------------------------- what there is

my ($status, $out, $err) = batch('--list-operators');
is($status, 0, 'the library is listed');
is($err, '', 'without a message');
my @listed = map { [split /\t/] } split /\n/, $out;
cmp_ok(scalar @listed, '>', 25, 'it has its operators');
my (@operators, @networks);
for my $entry (@listed) {
	my $text = get($entry->[2]);
	$text =~ s/^(?:\s+|#[^\n]*\n)*//;
	if ($text =~ /^tavrn-version\b/) {
		push @networks, $entry;
	} else {
		push @operators, $entry->[0];
	}
}
cmp_ok(scalar @networks, '>', 0, 'and a saved network among them');

# ---------------------------------------------------------------- help

# Operator => {help, inputs, outputs}; a button is {kind, name, help, casts, options}.
my %described;
($status, $out, $err) = batch(map { ('--describe', $_) } @operators);
is($status, 0, 'all operators can be described');
is($err, '', 'without a message');
{
	my ($operator, $button);
	for my $line (split /\n/, $out) {
		if ($line =~ /^(input|vinput|output) (\w+)$/) {
			$button = { kind => $1, name => $2, help => '', casts => [] };
			push @{ $operator->{ $1 eq 'output' ? 'outputs' : 'inputs' } }, $button;
		} elsif ($line =~ /^\S/) {
			$operator = $described{$line} = { help => '', inputs => [], outputs => [] };
			$button = undef;
		} elsif ($button && $line =~ /^    (float|xyz|rgba?|string|generic(?::\w+)?)(?::\s.*?)?(?:, one of (.*))?$/) {
			push @{ $button->{casts} }, $1;
			$button->{options} = [split ' ', $2] if defined $2;
		} else {
			($button // $operator)->{help} .= $line =~ s/^\s+//r . "\n" if $line !~ /^\s*stands for:/;
		}
	}
}
for my $name (@operators) {
	my $operator = $described{$name};
	ok($operator, "$name is described") or next;
	my @bare = grep { $_->{help} !~ /\w+\s+\w+/ } @{ $operator->{inputs} }, @{ $operator->{outputs} };
	like($operator->{help}, qr/^\Q$name\E: \S.{20}/s, "$name has a help text that begins with its name");
	is(join(' ', map { $_->{name} } @bare), '', "$name has one for each button");
	my @mute = grep { !@{ $_->{casts} } } @{ $operator->{inputs} }, @{ $operator->{outputs} };
	is(join(' ', map { $_->{name} } @mute), '', "and all of them have a type");
	for my $button (grep { $_->{options} } @{ $operator->{inputs} }) {
		my @untold = grep { $button->{help} !~ /\b\Q$_\E\b/ } @{ $button->{options} };
		is(join(' ', @untold), '', "the help of $name, $button->{name} tells its options");
	}
}

# ---------------------------------------------------------------- documents

# A document in the making: boxes as text, wires as lines.
sub document { return { boxes => [], wires => [], names => {} } }

# Adds a box. %set gives a button's cast, or its cast and value.
sub box {
	my ($document, $name, %set) = @_;
	my $wid = 1 + @{ $document->{boxes} };
	my $text = "opbox {\nfilename $name\nwid $wid\nxypos 0 0\nopboxdefs { maxinstances 0 }\n";
	for my $button (@{ $described{$name}{inputs} }, @{ $described{$name}{outputs} }) {
		my ($cast, $value) = @{ $set{ $button->{name} } // [$button->{casts}[0]] };
		my $base = $button->{kind} eq 'vinput' ? $button->{name} =~ s/\d+$//r : $button->{name};
		$text .= "opbutton.$button->{kind} $base $button->{name} { opbuttondefs { currentcast $cast\n wwms {\n"
			. (defined $value ? "$cast $value\n" : '') . "}\n}\n}\n";
	}
	push @{ $document->{boxes} }, "$text}\n";
	$document->{names}{$wid} = $name;
	return $wid;
}

sub wire {
	my ($document, $from, $output, $to, $input) = @_;
	push @{ $document->{wires} }, "opbox:$document->{names}{$from},$from,x,$output -> opbox:$document->{names}{$to},$to,x,$input\n";
}

# Adds a box with a Surface box of its own behind the first output.
sub island {
	my ($document, $name, %set) = @_;
	my $wid = box($document, $name, %set);
	if (@{ $described{$name}{outputs} }) {
		wire($document, $wid, 0, box($document, 'Surface'), 0);
	}
	return $wid;
}

# Generates a document twice, in both types of shader, and looks at what comes.
sub generates {
	my ($document, $name, $what) = @_;
	my $path = "$dir/$name.tvn";
	put($path, "tavrn-version 1\ntavrn-renderer mray\nopdesk {\n" . join('', @{ $document->{boxes} })
		. "opconnects {\n" . join('', @{ $document->{wires} }) . "}\n}\n");
	for my $type (qw(surface module)) {
		my @texts;
		for my $run (1, 2) {
			my $keep = "$dir/$name.$type.$run";
			my ($status, $out, $err) = batch('--set', "TAVRN_SHADER_TYPE=$type", '--save-shader', '--keep-work', $keep, $path);
			is($status, 0, "$what: generates and compiles ($type)") or diag $err;
			is($err, '', "$what: without a message ($type)");
			ok(-s "$keep/$name.spv", "$what: leaves a compiled shader ($type)");
			push @texts, get("$keep/$name");
		}
		is($texts[0], $texts[1], "$what: the same text again ($type)");
		my %stands = map { $_ => 1 } $texts[0] =~ m{^ +// (\w+_\d+)$}mg;
		my @missing = grep { !$stands{$_} } map { "$document->{names}{$_}_$_" }
			grep { speaks($document->{names}{$_}) } sort { $a <=> $b } keys %{ $document->{names} };
		is("@missing", '', "$what: every box stands in the text ($type)");
	}
}

# Whether an operator has statements.
my %speaks;
sub speaks {
	my ($name) = @_;
	my ($entry) = grep { $_->[0] eq $name } @listed;
	return $speaks{$name} //= get($entry->[2]) =~ /^codegen\.main-body/m ? 1 : 0;
}

my $defaults = document();
island($defaults, $_) for @operators;
generates($defaults, 'defaults', 'all operators as they come');

my $modes = document();
for my $name (@operators) {
	for my $button (grep { $_->{options} } @{ $described{$name}{inputs} }) {
		island($modes, $name, $button->{name} => ['string', "\"$_\""]) for @{ $button->{options} };
	}
}
cmp_ok(scalar @{ $modes->{boxes} }, '>', 50, 'there are many modes');
generates($modes, 'modes', 'every option of every operator');

my $casts = document();
for my $name (@operators) {
	my @buttons = (@{ $described{$name}{inputs} }, @{ $described{$name}{outputs} });
	for my $number (1 .. 5) {
		my %set = map { $_->{name} => [$_->{casts}[$number]] } grep { $_->{casts}[$number] } @buttons;
		island($casts, $name, %set) if %set;
	}
}
cmp_ok(scalar @{ $casts->{boxes} }, '>', 10, 'there are casts');
generates($casts, 'casts', 'every cast of every operator');

my $wires = document();
my %source = (float => ['Number', 0], colour => ['Tint', 0], point => ['Coordinates', 0],
	coverage => ['Coverage', 0], pair => ['Coordinates', 1]);
for my $type (sort keys %source) {
	my ($from, $output) = @{ $source{$type} };
	my $wid = box($wires, $from);
	for my $name (@operators) {
		my @inputs = @{ $described{$name}{inputs} };
		my $to = island($wires, $name);
		wire($wires, $wid, $output, $to, $_) for grep { $inputs[$_]{casts}[0] ne 'string' } 0 .. $#inputs;
	}
}
generates($wires, 'wires', 'every type of wire at every input');

# ---------------------------------------------------------------- networks

for my $entry (@networks) {
	my ($name, undef, $path) = @$entry;
	copy($path, "$dir/$name.tvn") or die "$path: $!";
	my ($status, $out, $err) = batch('--save-shader', '--keep-work', "$dir/$name.work", "$dir/$name.tvn");
	is($status, 0, "the network $name generates") or diag $err;
	is($err, '', 'without a message');
	my $text = get($path);
	cmp_ok(scalar(() = $text =~ /^\s*opbox\s*$/mg), '>', 2, 'it has several boxes');
	cmp_ok(scalar(() = $text =~ /->/g), '>', 2, 'which are wired');
	unlike($text, qr/^\s*arg 1\s*$/m, 'and no arguments, which would meet those of a second copy');
	unlike($text, qr/filename Surface/, 'nor an end of its own');
}

# ---------------------------------------------------------------- examples

my @examples = glob "$FindBin::Bin/../../examples/*.tvn";
cmp_ok(scalar @examples, '>=', 6, 'there are examples');
my (%scenes, %types);
for my $path (@examples) {
	my ($name) = $path =~ m{([^/]+)\.tvn$};
	my $keep = "$dir/$name.work";
	my ($status, $out, $err) = batch('--save', "$dir/$name.again", $path);
	is($status, 0, "$name opens");
	is($err, '', 'without a message');
	my $text = get($path);
	is(timeless(get("$dir/$name.again")), timeless($text), 'it is saved as it stands') or diag $path;

	($status, $out, $err) = batch('--quiet', '--set', 'MRAY_SIZE=64,48', '--set', 'MRAY_SAMPLES=1', '--render',
		'--keep-work', $keep, $path);
	is($status, 0, "$name renders") or diag $err;
	is($err, '', 'without a message');
	my $picture = get("$keep/1/$name.png");
	is(substr($picture, 1, 3), 'PNG', 'a picture');
	cmp_ok(length $picture, '>', 2000, 'that shows something');

	my %options = $text =~ /^    setenv (\w+) "(.*)"\r$/mg;
	push @{ $scenes{"@options{qw(MRAY_OBJECT MRAY_BACKGROUND MRAY_LIGHT)}"} }, $name;
	$types{ $options{TAVRN_SHADER_TYPE} }++;
	my ($help) = $text =~ /^customshaderhelp\r\n\{\r\n(.*?)^\}\r$/ms;
	like($help, qr/^>\s+(?:[A-Z] ){3}.*^>VARIABLES\r.*^>DESCRIPTION\r.*^>AUTHOR\r/ms, 'its help has all sections');
	my @arguments = $text =~ /^ +arg 1\r\n +argname "(\w+)"\r\n +comments "\w[^"]{5,}"\r$/mg;
	cmp_ok(scalar @arguments, '>=', 3, 'it has arguments with remarks');
	is(scalar @arguments, scalar(() = $text =~ /^ +arg 1\r$/mg), 'all of them');
	my @untold = grep { my $arg = $_; $help !~ /^>\s+\Q$arg\E\s+- \w/m } @arguments;
	is("@untold", '', 'and the help tells them');
}
is(join(', ', map { "@$_" } grep { @$_ > 1 } values %scenes), '', 'no two examples have the same scene');
is(join(' ', sort keys %types), 'module surface', 'both types of shader have an example');

# The two comments with the time are no part of what was saved.
sub timeless { $_[0] =~ s/^# Tavrn file written at .*$/# time/mgr }

done_testing;
